#pragma once

#include <string_view>

#include "vantu/pickers/base_image_pick_handler.h"

namespace vantu {

/// "vantuCaptureImageFromCamera": the user takes one photo ("useFrontCamera":
/// a bool, the front camera when true); answers like "vantuOpenGallery"
/// with a JPEG named after the time. The camera's availability is checked
/// before the busy flag, then the camera authorisation.
class CaptureImageFromCameraHandler : public BaseImagePickHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuCaptureImageFromCamera";
  static constexpr std::string_view kNoViewController = "CaptureImageFromCamera: No view controller!";
  static constexpr std::string_view kCameraUnavailable = "CaptureImageFromCamera: Camera is unavailable!";
  static constexpr std::string_view kBusy = "CaptureImageFromCamera: Bridge is busy!";
  static constexpr std::string_view kNotAuthorized =
      "CaptureImageFromCameraHandler: Not authorized to access Camera, first use the request permissions bridge "
      "to get access to Camera!";

  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
