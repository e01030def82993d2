// Laizaxlu's keyboard-fixer operation. It lives here, beside the fixer,
// because vantu/core does not depend on vantu/container.

#include "vantu/container/web_view_keyboard_offset_fixer.h"
#include "vantu/core/h5_web_view_extractor.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {

void Laizaxlu::attachKeyboardOffsetFixer(ViewController& viewController) {
  auto webView = H5WebViewExtractor::extractWebViewRecursivelyFrom(viewController);
  if (!webView) return;
  setOffsetFixer(viewController, WebViewKeyboardOffsetFixer::make(webView));
}

}  // namespace vantu
