#pragma once
// What the two share bridges have in common: opening the platform's share
// sheet with a text and/or an image.

#include <optional>
#include <string>
#include <string_view>

#include "vantu/core/h5_handler_input_params.h"
#include "vantu/platform/images.h"

namespace vantu {

class ShareUtil {
 public:
  static constexpr std::string_view kNothingToShare = "ShareTextAndImageHandler: Text and image both found nil";

  /// Presents a share sheet on `viewController`, animated, with the text
  /// (first) and the image, whichever are given, and no application
  /// activities; then answers {"data": {"success": true}} at once, without
  /// waiting for the user. With neither it presents nothing and answers
  /// {"data": {"success": false, "error": kNothingToShare}}.
  static void share(std::optional<std::string> text, std::optional<Image> image, ViewController& viewController,
                    const H5Callback& callback);
};

}  // namespace vantu
