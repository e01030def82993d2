#pragma once

#include <optional>
#include <string_view>

#include "vantu/core/h5_base_handler.h"
#include "vantu/platform/images.h"

namespace vantu {

/// "vantuShareTextAndImage": opens the share sheet with the page's "text"
/// and/or "image" (both optional strings, at least one needed) and answers
/// {"data": {"success": true}} once the sheet is presented (see ShareUtil).
/// An "image" that gives no picture fails the call, even with a text.
class ShareTextAndImageHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuShareTextAndImage";
  static constexpr std::string_view kNoViewController = "ShareTextAndImageHandler: Unable to get current H5 Context";
  static constexpr std::string_view kNothingPassed = "ShareTextAndImageHandler: Neither text not image base 64 passed!";
  static constexpr std::string_view kBadImage = "ShareTextAndImageHandler: Failed to create image from base 64 string!";

  void handleWith(H5HandlerInputParams params) override;

  /// The picture a page's "image" string stands for. A string containing
  /// "data:image" is a URL whose bytes are loaded (only data URLs load
  /// anything, see data_url.h); any other string is Base64, decoded
  /// ignoring characters outside the alphabet. The bytes must then be a
  /// PNG, JPEG, GIF or BMP file (see image_decoder.h).
  static std::optional<Image> imageFromPageString(std::string_view image);
};

}  // namespace vantu
