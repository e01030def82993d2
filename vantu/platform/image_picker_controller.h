#pragma once
// UI port: the system image picker. The library makes one, chooses its
// source (the photo library or the camera, with the camera device),
// sets its delegate and presents it with `ViewController::present`; the
// platform shows it and reports the outcome through `finishPicking` (the
// chosen image's media info) or `cancel`. Neither dismisses the picker:
// its delegate does.

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "vantu/platform/application.h"
#include "vantu/platform/images.h"
#include "vantu/platform/view_controller.h"

namespace vantu {

/// What the picker reports about a chosen image. `imageURL` is the picked
/// file's URL ("file:///..."); `phAsset` is what older systems give in its
/// place; `originalImage` is the decoded picture.
enum class ImagePickerInfoKey { originalImage, imageURL, phAsset };

/// The key's raw string ("UIImagePickerControllerOriginalImage", ...), the
/// name pages and messages use for it.
std::string_view rawValue(ImagePickerInfoKey key);

/// An info value: a URL's text or a picture.
using ImagePickerInfoValue = std::variant<std::string, std::shared_ptr<const Image>>;
using ImagePickerMediaInfo = std::map<ImagePickerInfoKey, ImagePickerInfoValue>;

class ImagePickerController;

class ImagePickerControllerDelegate {
 public:
  virtual ~ImagePickerControllerDelegate() = default;
  virtual void didFinishPickingMedia(ImagePickerController& picker, const ImagePickerMediaInfo& info) = 0;
  virtual void didCancel(ImagePickerController& picker) = 0;
};

class ImagePickerController : public ViewController {
 public:
  enum class CameraDevice { rear, front };

  ImagePickerSource sourceType() const { return sourceType_; }
  void setSourceType(ImagePickerSource source) { sourceType_ = source; }
  CameraDevice cameraDevice() const { return cameraDevice_; }
  void setCameraDevice(CameraDevice device) { cameraDevice_ = device; }
  bool allowsEditing() const { return allowsEditing_; }
  void setAllowsEditing(bool value) { allowsEditing_ = value; }

  /// Held weakly, as the platform's picker holds its delegate.
  void setDelegate(std::weak_ptr<ImagePickerControllerDelegate> delegate) { delegate_ = std::move(delegate); }

  /// The user chose an image. False, telling no one, when the picker is
  /// not being presented. The picker stays alive while its delegate runs.
  bool finishPicking(const ImagePickerMediaInfo& info);
  /// The user cancelled; false when the picker is not being presented.
  bool cancel();

 private:
  ImagePickerSource sourceType_ = ImagePickerSource::photoLibrary;
  CameraDevice cameraDevice_ = CameraDevice::rear;
  bool allowsEditing_ = false;
  std::weak_ptr<ImagePickerControllerDelegate> delegate_;
};

}  // namespace vantu
