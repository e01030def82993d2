#include "vantu/container/vantu_h5_web_view_customization_constants.h"

namespace vantu {

std::string_view rawValue(VantuH5WebViewCustomizationConstants key) {
  switch (key) {
    case VantuH5WebViewCustomizationConstants::kMediaPlaybackRequiresUserAction: return "mediaPlaybackRequiresUserGesture";
    case VantuH5WebViewCustomizationConstants::kAllowsInlineMediaPlayback: return "allowsInlineMediaPlayback";
    case VantuH5WebViewCustomizationConstants::kContentInsetAdjustmentBehavior: return "contentInsetAdjustmentBehavior";
    case VantuH5WebViewCustomizationConstants::kKeyboardDismissMode: return "keyboardDismissMode";
  }
  return {};
}

std::optional<VantuH5WebViewCustomizationConstants> webViewCustomizationConstantFromRawValue(std::string_view raw) {
  for (auto key : kAllWebViewCustomizationConstants) {
    if (rawValue(key) == raw) return key;
  }
  return std::nullopt;
}

}  // namespace vantu
