#pragma once
// Applies container flags (keys in VantuH5ContainerCustomizationConstants)
// to a container screen and its navigation controller. Never fails to its
// caller: a flag that cannot be applied is reported as one printed line and
// the next flag is handled.

#include <cstdint>
#include <memory>

#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu {

class VantuH5ContainerCustomizer {
 public:
  /// Tag of the coloured strip behind the status bar, a subview of the key
  /// window. At most one is kept.
  static constexpr std::int64_t kStatusbarBackgroundViewTag = 9380999;

  /// Handles every flag in the dictionary's order.
  static void customize(ViewController& viewController,
                        const std::shared_ptr<NavigationController>& navigationController, const Dict& flags);

 private:
  static void setTitleBarVisibility(ViewController& viewController, NavigationController* navigationController,
                                    const Value& value);
  static void setRendersAboveHomeIndicator(ViewController& viewController, NavigationController* navigationController,
                                           const Value& value);
  static void setTitleBarTintColor(NavigationController* navigationController, const Value& value);
  static void setStatusbarBackgroundColor(const Value& value);
  static void resetStatusbarBackgroundColor();
  /// Places the root view and the web view below the bars and above the
  /// home indicator as the screen's safe-area flags ask.
  static void layoutWebView(ViewController& viewController, NavigationController& navigationController);
};

}  // namespace vantu
