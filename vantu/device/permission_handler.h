#pragma once
// One kind of operating-system permission, as the permission bridges see it.

#include <cstdint>
#include <functional>
#include <memory>

#include "vantu/platform/view_controller.h"

namespace vantu {

/// The status a check reports to the page.
namespace permission_status {
inline constexpr std::int64_t kGranted = 1;
inline constexpr std::int64_t kRefused = 0;  // denied or restricted
inline constexpr std::int64_t kNotAsked = -1;
}  // namespace permission_status

class PermissionHandler {
 public:
  using StatusCompletion = std::function<void(std::int64_t status)>;
  /// Takes 1 (granted) or 0 (not granted).
  using RequestCompletion = std::function<void(std::int64_t granted)>;

  virtual ~PermissionHandler() = default;

  /// Calls `completion` synchronously with the status; does not call it at
  /// all when the platform reports a state this handler does not know.
  virtual void getPermissionStatus(const StatusCompletion& completion) = 0;

  /// Brings the permission to a final state and calls `completion` once:
  /// at once when granted, after the settings alert on `viewController`
  /// when refused, after the system prompt when not yet asked (on the
  /// thread the platform answers on). An unknown platform state calls
  /// nothing.
  virtual void requestPermission(const std::shared_ptr<ViewController>& viewController,
                                 RequestCompletion completion) = 0;
};

}  // namespace vantu
