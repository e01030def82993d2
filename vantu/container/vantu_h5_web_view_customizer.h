#pragma once
// Applies web-view flags to a web view's scroll view. Never fails to its
// caller: each flag that cannot be applied is reported as one printed line
// and the next flag is processed.

#include <memory>

#include "vantu/platform/object.h"
#include "vantu/value/value.h"

namespace vantu {

class VantuH5WebViewCustomizer {
 public:
  /// Handles every flag in the dictionary's order. `webView` may be any
  /// object (or none); settings are applied only when it is a WebView, but
  /// the diagnostics are printed whatever it is. Integer flags must hold
  /// integers (a double, a bool or a digit string is "not an integer") and
  /// are passed to the scroll view unchecked.
  static void customize(const std::shared_ptr<Object>& webView, const Dict& webViewFlags);
};

}  // namespace vantu
