#pragma once
// What the two image bridges share: the busy flag (read and written only
// through synchronous blocks on the serial queue "MuQ"), the picker they
// show, and the step that turns the picker's outcome into the answer.

#include <memory>
#include <string_view>

#include "vantu/core/h5_base_handler.h"
#include "vantu/pickers/image_picker.h"
#include "vantu/platform/authorization.h"
#include "vantu/platform/dispatch.h"

namespace vantu {

class BaseImagePickHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kLockingQueueLabel = "MuQ";
  static constexpr std::string_view kPickFailed = "pick image failed";
  static constexpr std::string_view kInfoNil = "pick image failed - info is nil";
  static constexpr std::string_view kNoAsset = "OpenGalleryAndPickImageHandler: Failed to bind selected asset!";

  BaseImagePickHandler();

  void setBridgeBusy(bool busy);
  bool isBridgeBusy();
  const std::shared_ptr<ImagePicker>& imagePicker() const { return imagePicker_; }

 protected:
  enum class Source { photoLibrary, camera };

  /// Whether the system's state for `resource` is authorized (no
  /// authorisation port counts as not authorized).
  static bool isAuthorized(ProtectedResource resource);

  /// The completion to give the picker: holds this handler weakly (a gone
  /// handler answers nothing and its flag stays set), answers the page and
  /// then clears the busy flag.
  ImagePicker::Handler resultStep(Source source, H5Callback callback);

 private:
  void answerResult(Source source, bool success, const std::optional<PlatformError>& error,
                    const std::optional<ImagePicker::Info>& info, const H5Callback& callback);

  std::shared_ptr<SerialQueue> lockingQueue_;
  bool bridgeBusy_ = false;
  std::shared_ptr<ImagePicker> imagePicker_;
};

}  // namespace vantu
