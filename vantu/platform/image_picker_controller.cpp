#include "vantu/platform/image_picker_controller.h"

namespace vantu {

std::string_view rawValue(ImagePickerInfoKey key) {
  switch (key) {
    case ImagePickerInfoKey::originalImage: return "UIImagePickerControllerOriginalImage";
    case ImagePickerInfoKey::imageURL: return "UIImagePickerControllerImageURL";
    case ImagePickerInfoKey::phAsset: return "UIImagePickerControllerPHAsset";
  }
  return "";
}

bool ImagePickerController::finishPicking(const ImagePickerMediaInfo& info) {
  if (!presentingViewController()) return false;
  auto keepAlive = shared_from_this();  // the delegate dismisses the picker
  if (auto delegate = delegate_.lock()) delegate->didFinishPickingMedia(*this, info);
  return true;
}

bool ImagePickerController::cancel() {
  if (!presentingViewController()) return false;
  auto keepAlive = shared_from_this();
  if (auto delegate = delegate_.lock()) delegate->didCancel(*this);
  return true;
}

}  // namespace vantu
