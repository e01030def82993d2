#include "vantu/container/web_view_settings_customization_handler.h"

#include "vantu/container/vantu_h5_web_view_customizer.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/h5_web_view_extractor.h"

namespace vantu {

void WebViewSettingsCustomizationHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) {
    answerFailure(params.callback, "WebViewSettingsCustomizationHandler: Unable to get current H5 Context");
    return;
  }
  auto webView = H5WebViewExtractor::extractWebViewFrom(*params.viewController);
  if (!webView) {
    answerFailure(params.callback, "WebViewSettingsCustomizationHandler: Unable to get webview");
    return;
  }
  if (!params.data.hasOnlyStringKeys()) {
    answerFailure(params.callback, "WebViewSettingsCustomizationHandler: Typecast of [AnyHashable : Any] to [String:Any] failed!");
    return;
  }
  VantuH5WebViewCustomizer::customize(webView, params.data);
  params.callback(true);
}

}  // namespace vantu
