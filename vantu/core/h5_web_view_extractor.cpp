#include "vantu/core/h5_web_view_extractor.h"

namespace vantu {

std::shared_ptr<WebView> H5WebViewExtractor::extractWebViewFrom(ViewController& viewController) {
  for (const auto& subview : viewController.view()->subviews()) {
    if (auto webView = std::dynamic_pointer_cast<WebView>(subview)) return webView;
  }
  return nullptr;
}

std::shared_ptr<WebView> H5WebViewExtractor::extractWebViewRecursivelyFrom(ViewController& viewController) {
  if (auto webView = extractWebViewFrom(viewController)) return webView;
  // Copy: looking at a child's view may load it, which must not disturb the walk.
  auto children = viewController.children();
  for (const auto& child : children) {
    if (auto webView = extractWebViewRecursivelyFrom(*child)) return webView;
  }
  return nullptr;
}

}  // namespace vantu
