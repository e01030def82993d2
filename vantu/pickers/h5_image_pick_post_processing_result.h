#pragma once
// What the post-processor makes of a picked image, and the image types.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/platform_error.h"

namespace vantu {

/// The image type words; the unknown type is the empty string.
struct H5ImageType {
  static constexpr std::string_view jpg = "jpg";
  static constexpr std::string_view png = "png";
  static constexpr std::string_view unknown = "";
};

struct H5ImagePickPostProcessingResult {
  std::optional<std::string> imageName;
  std::optional<std::string> imageType;
  std::optional<std::int64_t> imageSize;
  std::optional<std::string> base64;  // standard Base64, no line breaks
  std::optional<PlatformError> imageNameError;
  std::optional<PlatformError> imageTypeError;
  std::optional<PlatformError> imageSizeError;
};

}  // namespace vantu
