#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vantu/platform/view_controller.h"

namespace vantu {

class PermissionHelper {
 public:
  static constexpr std::string_view kOpenSettingsTitle = "Open Settings";
  static constexpr std::string_view kCancelTitle = "Cancel";

  /// Presents an alert (no title, `message`) with "Open Settings", which
  /// opens the app's settings page, and "Cancel". Either button dismisses
  /// the alert and then calls `completion`, on the main thread.
  static void showOpenSettingsAlert(std::string message, const std::shared_ptr<ViewController>& viewController,
                                    std::function<void()> completion);
};

}  // namespace vantu
