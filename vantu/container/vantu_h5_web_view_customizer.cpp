#include "vantu/container/vantu_h5_web_view_customizer.h"

#include <string>

#include "vantu/container/vantu_h5_web_view_customization_constants.h"
#include "vantu/core/diagnostics.h"
#include "vantu/core/os_version.h"
#include "vantu/platform/view.h"

namespace vantu {
namespace {

using Flag = VantuH5WebViewCustomizationConstants;

std::shared_ptr<ScrollView> scrollViewOf(const std::shared_ptr<Object>& webView) {
  auto web = std::dynamic_pointer_cast<WebView>(webView);
  return web ? web->scrollView() : nullptr;
}

}  // namespace

void VantuH5WebViewCustomizer::customize(const std::shared_ptr<Object>& webView, const Dict& webViewFlags) {
  for (const auto& [key, value] : webViewFlags) {
    const std::string* name = key.string();
    auto flag = name ? webViewCustomizationConstantFromRawValue(*name) : std::nullopt;
    if (!flag) {
      printDiagnostic("Failed to apply unmapped key: " + key.text());
      continue;
    }
    switch (*flag) {
      case Flag::kMediaPlaybackRequiresUserAction:
      case Flag::kAllowsInlineMediaPlayback:
        printDiagnostic("This feature is not supported by this version of Keglib");
        break;
      case Flag::kContentInsetAdjustmentBehavior:
        if (!value.isInt()) {
          printDiagnostic("Failed to apply contentInsetAdjustmentBehavior; the value passed is not an integer");
        } else if (!isSystemVersionAtLeast(11)) {
          printDiagnostic("Failed to apply contentInsetAdjustmentBehavior since iOS version < 11");
        } else if (auto scrollView = scrollViewOf(webView)) {
          scrollView->setContentInsetAdjustmentBehavior(*value.asInt());
        }
        break;
      case Flag::kKeyboardDismissMode:
        if (!value.isInt()) {
          printDiagnostic("Failed to apply keyboardDismissMode; the value passed is not an integer");
        } else if (auto scrollView = scrollViewOf(webView)) {
          scrollView->setKeyboardDismissMode(*value.asInt());
        }
        break;
    }
  }
}

}  // namespace vantu
