#pragma once

#include <string_view>

#include "vantu/pickers/base_image_pick_handler.h"

namespace vantu {

/// "vantuOpenGallery": the user picks one photo from the photo library;
/// answers {"data": {"base64", "meta": {"imageName", "imageType",
/// "imageSize"}}} or the flat error. Checks, in order: a calling screen,
/// the busy flag, the photo-library authorisation, the library source.
class OpenGalleryAndPickImageHandler : public BaseImagePickHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuOpenGallery";
  static constexpr std::string_view kNoViewController = "OpenGalleryAndPickImageHandler: No view controller!";
  static constexpr std::string_view kBusy = "OpenGalleryAndPickImageHandler: Bridge is busy!";
  static constexpr std::string_view kNotAuthorized =
      "OpenGalleryAndPickImageHandler: Not authorized to access Photos, first use the request permissions bridge "
      "to get access to Photos!";
  static constexpr std::string_view kLibraryUnavailable = "UIImagePickerController.SourceType.photoLibrary not available!";

  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
