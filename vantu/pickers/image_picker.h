#pragma once
// Drives the system image picker for one handler: shows a library or
// camera picker on a view controller, is its delegate, and hands the
// outcome to the completion it was given. One picker at a time.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/image_picker_controller.h"
#include "vantu/platform/platform_error.h"

namespace vantu {

class ImagePicker : public ImagePickerControllerDelegate, public std::enable_shared_from_this<ImagePicker> {
 public:
  static constexpr std::string_view kErrorDomain = "ImagePicker";
  static constexpr std::string_view kBusy = "ImagePicker is Busy!";
  static constexpr std::string_view kCancelled = "User cancelled the operation!";

  /// The media info keyed by the info keys' raw strings.
  using Info = std::map<std::string, ImagePickerInfoValue, std::less<>>;
  using Handler = std::function<void(bool success, std::optional<PlatformError> error, std::optional<Info> info)>;

  /// Shows a photo-library picker. When a picker of this object is already
  /// up, nothing is shown and `completion` is called at once with the busy
  /// error (code -1).
  void showPhotoLibrary(ViewController& on, Handler completion);
  void showCamera(ViewController& on, bool useFrontCamera, Handler completion);

  bool isShowing() const { return static_cast<bool>(handler_); }

  void didFinishPickingMedia(ImagePickerController& picker, const ImagePickerMediaInfo& info) override;
  void didCancel(ImagePickerController& picker) override;

 private:
  void show(ViewController& on, ImagePickerSource source, bool useFrontCamera, Handler completion);
  /// Calls and clears `handler_`.
  void complete(bool success, std::optional<PlatformError> error, std::optional<Info> info);

  Handler handler_;
};

}  // namespace vantu
