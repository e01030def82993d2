#pragma once
// Turns a picked image into its name, type, size and Base64 bytes. A
// library pick is read from its file; a camera capture is encoded (JPEG at
// full quality, or PNG).

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/pickers/h5_image_pick_post_processing_result.h"
#include "vantu/pickers/image_picker.h"

namespace vantu {

class ImagePickPostProcessor {
 public:
  static constexpr std::string_view kErrorDomain = "ImagePickPostProcessor";
  enum Code : std::int64_t {
    nameUrlMissing = 0,
    typeUrlMissing = 1,
    emptyImagePath = 3,
    unreadableFile = 4,
    bytesUrlMissing = 5,
    noImage = 6,
    noImageType = 7,
    invalidImageType = 8,
  };
  static constexpr std::string_view kUrlMissing = "info[UIImagePickerControllerImageURL] could not be bound; ios ver >= 11";
  static constexpr std::string_view kUrlMissingBefore11 =
      "info[UIImagePickerControllerReferenceURL] could not be bound; ios ver < 11";
  static constexpr std::string_view kNoImagePath = "Could not extract image path!";
  static constexpr std::string_view kReadFailed = "Failed to read data from path!";
  static constexpr std::string_view kImageNil = "Image was nil!";
  static constexpr std::string_view kTypeNil = "Image type was nil!";
  static constexpr std::string_view kTypeInvalid = "Image type was invalid!";

  /// A photo-library pick: name, type, size and bytes from its image URL.
  static H5ImagePickPostProcessingResult processLibraryPick(const ImagePicker::Info& info);
  /// A camera capture named after the time `secondsSince1970`.
  static H5ImagePickPostProcessingResult processCameraCapture(const Image& image, double secondsSince1970);

  /// Sets the size and bytes of a capture from `image` encoded as `type`
  /// ("jpg"/"jpeg": JPEG at quality 1.0, "png": PNG), or the size error
  /// (no image, no type, another type).
  static void encodeCapturedImage(const Image* image, const std::optional<std::string>& type,
                                  H5ImagePickPostProcessingResult& result);

  /// "1700000000_123456.jpg": the time as the shortest decimal that reads
  /// back the same (with ".0" when whole), "." replaced by "_".
  static std::string cameraImageName(double secondsSince1970);
  /// "jpg", "png" or "" from the end of the lower-cased URL text.
  static std::string imageTypeOfUrl(std::string_view url);
  /// The image URL of the info: under the image-URL key on systems from
  /// 11 on, the asset key before.
  static std::optional<std::string> imageUrl(const ImagePicker::Info& info);
};

}  // namespace vantu
