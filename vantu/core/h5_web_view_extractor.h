#pragma once
// Finds the web view inside a screen.

#include <memory>

#include "vantu/platform/view_controller.h"

namespace vantu {

class H5WebViewExtractor {
 public:
  /// The first direct subview of the root view (loading it) that is a web
  /// view; nested subviews are not searched.
  static std::shared_ptr<WebView> extractWebViewFrom(ViewController& viewController);
  /// The view controller's own web view, else the first found in its child
  /// view controllers, depth first.
  static std::shared_ptr<WebView> extractWebViewRecursivelyFrom(ViewController& viewController);
};

}  // namespace vantu
