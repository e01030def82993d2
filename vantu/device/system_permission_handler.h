#pragma once
// The behaviour every permission kind shares: the platform's state is
// sorted into a standing, and the standing decides the status a check
// reports and what a request does.

#include <functional>
#include <string_view>

#include "vantu/device/permission_handler.h"
#include "vantu/platform/authorization.h"

namespace vantu {

class SystemPermissionHandler : public PermissionHandler {
 public:
  enum class Standing {
    granted,
    refused,   // denied or restricted: a request offers the settings page
    notAsked,  // a request shows the system prompt
    unknown,   // a state outside the handler's table: no answer at all
    /// The platform has no such facility: reported refused, and a request
    /// answers 0 at once (the settings page cannot help).
    unavailable,
  };

  void getPermissionStatus(const StatusCompletion& completion) override;
  void requestPermission(const std::shared_ptr<ViewController>& viewController, RequestCompletion completion) override;

  /// The message of the settings alert shown when the permission is refused.
  virtual std::string_view settingsMessage() const = 0;

 protected:
  /// The platform states a kind's table holds besides authorized, denied
  /// and notDetermined; any other state has no answer.
  struct KnownStates {
    bool authorizedWhenInUse = false;  // granted, for the location
    bool restricted = true;            // refused; the microphone has no such state
  };
  static Standing standingOf(AuthorizationState state, KnownStates known);

  virtual Standing standing() const = 0;
  /// Shows the system prompt; `done` gets whether access was granted.
  virtual void askPlatform(std::function<void(bool granted)> done) = 0;
};

/// A permission backed by the authorisation port: the platform state is
/// read with `Authorization::state` and asked for with
/// `Authorization::request` (granted only when the new state is
/// `authorized`).
class ResourcePermissionHandler : public SystemPermissionHandler {
 public:
  explicit ResourcePermissionHandler(ProtectedResource resource, KnownStates known = {})
      : resource_(resource), known_(known) {}

 protected:
  Standing standing() const override;
  void askPlatform(std::function<void(bool granted)> done) override;

 private:
  ProtectedResource resource_;
  KnownStates known_;
};

}  // namespace vantu
