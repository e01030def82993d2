#pragma once
// The keys of a web-view flags dictionary (a container's `webViewFlags`, or
// the arguments of "vantuChangeWebSetting").

#include <array>
#include <optional>
#include <string_view>

namespace vantu {

enum class VantuH5WebViewCustomizationConstants {
  kMediaPlaybackRequiresUserAction,   // "mediaPlaybackRequiresUserGesture": not applied
  kAllowsInlineMediaPlayback,         // "allowsInlineMediaPlayback": not applied
  kContentInsetAdjustmentBehavior,    // "contentInsetAdjustmentBehavior": integer
  kKeyboardDismissMode,               // "keyboardDismissMode": integer
};

/// Every key, in declaration order.
inline constexpr std::array<VantuH5WebViewCustomizationConstants, 4> kAllWebViewCustomizationConstants = {
    VantuH5WebViewCustomizationConstants::kMediaPlaybackRequiresUserAction,
    VantuH5WebViewCustomizationConstants::kAllowsInlineMediaPlayback,
    VantuH5WebViewCustomizationConstants::kContentInsetAdjustmentBehavior,
    VantuH5WebViewCustomizationConstants::kKeyboardDismissMode,
};

/// The flag key text.
std::string_view rawValue(VantuH5WebViewCustomizationConstants key);
/// Only an exact key text (case-sensitive) names a key.
std::optional<VantuH5WebViewCustomizationConstants> webViewCustomizationConstantFromRawValue(std::string_view raw);

}  // namespace vantu
