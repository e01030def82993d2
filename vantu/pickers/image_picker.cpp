#include "vantu/pickers/image_picker.h"

#include "vantu/pickers/picker_error.h"

namespace vantu {

void ImagePicker::showPhotoLibrary(ViewController& on, Handler completion) {
  show(on, ImagePickerSource::photoLibrary, false, std::move(completion));
}

void ImagePicker::showCamera(ViewController& on, bool useFrontCamera, Handler completion) {
  show(on, ImagePickerSource::camera, useFrontCamera, std::move(completion));
}

void ImagePicker::show(ViewController& on, ImagePickerSource source, bool useFrontCamera, Handler completion) {
  if (handler_) {
    completion(false, pickers::makeError(kErrorDomain, -1, kBusy), std::nullopt);
    return;
  }
  handler_ = std::move(completion);
  auto picker = std::make_shared<ImagePickerController>();
  picker->setDelegate(weak_from_this());
  picker->setSourceType(source);
  picker->setAllowsEditing(false);
  if (source == ImagePickerSource::camera && useFrontCamera) {
    picker->setCameraDevice(ImagePickerController::CameraDevice::front);
  }
  on.present(picker, true);
}

void ImagePicker::didFinishPickingMedia(ImagePickerController& picker, const ImagePickerMediaInfo& info) {
  picker.dismiss(true);
  Info byName;
  for (const auto& [key, value] : info) byName.emplace(std::string(rawValue(key)), value);
  complete(true, std::nullopt, std::move(byName));
}

void ImagePicker::didCancel(ImagePickerController& picker) {
  picker.dismiss(true);
  complete(false, pickers::makeError(kErrorDomain, 0, kCancelled), std::nullopt);
}

void ImagePicker::complete(bool success, std::optional<PlatformError> error, std::optional<Info> info) {
  // Cleared before the call: the completion may show the next picker.
  auto handler = std::exchange(handler_, {});
  if (handler) handler(success, std::move(error), std::move(info));
}

}  // namespace vantu
