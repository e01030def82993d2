#pragma once
// Device-owner authentication port: the system sheet that lets the person
// holding the device prove they own it, with biometrics falling back to
// the passcode.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "vantu/platform/platform_error.h"

namespace vantu {

/// The system's reasons for a failed evaluation (the error's code).
namespace authentication_error {
inline constexpr std::int64_t kUserCancel = -2;
inline constexpr std::int64_t kPasscodeNotSet = -5;
/// Too many failed biometric attempts (older systems call it touch lockout).
inline constexpr std::int64_t kBiometryLockout = -8;
}  // namespace authentication_error

/// One evaluation's settings; a fresh context is made for each evaluation.
class AuthenticationContext {
 public:
  /// `success`, or the failure with the system's error when it gives one.
  using Reply = std::function<void(bool success, std::optional<PlatformError> error)>;

  virtual ~AuthenticationContext() = default;

  void setLocalizedCancelTitle(std::string title) { cancelTitle_ = std::move(title); }
  void setLocalizedFallbackTitle(std::string title) { fallbackTitle_ = std::move(title); }
  const std::string& localizedCancelTitle() const { return cancelTitle_; }
  const std::string& localizedFallbackTitle() const { return fallbackTitle_; }

  /// Evaluates device-owner authentication with `reason` shown in the
  /// sheet. `reply` is called once, on a queue of the platform's choosing
  /// (not the main thread). When the device cannot evaluate the policy (no
  /// passcode set, say) the reply is a failure at once, without a sheet.
  void evaluateDeviceOwnerAuthentication(std::string reason, Reply reply) {
    doEvaluateDeviceOwnerAuthentication(std::move(reason), std::move(reply));
  }

 protected:
  virtual void doEvaluateDeviceOwnerAuthentication(std::string reason, Reply reply) = 0;

 private:
  std::string cancelTitle_;
  std::string fallbackTitle_;
};

class DeviceOwnerAuthentication {
 public:
  virtual ~DeviceOwnerAuthentication() = default;
  std::shared_ptr<AuthenticationContext> makeContext() { return doMakeContext(); }

 protected:
  virtual std::shared_ptr<AuthenticationContext> doMakeContext() = 0;
};

}  // namespace vantu
