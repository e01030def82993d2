#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

#include "vantu/core/h5_base_handler.h"
#include "vantu/platform/device_owner_authentication.h"

namespace vantu {

/// "vantuAuthenticateOnDevice": the person holding the device proves they
/// own it (biometrics, falling back to the passcode). Optional text
/// arguments "Cancel", "Fallback" and "authenticationReason" set the
/// sheet's texts. Answers {"data": {"success": true}} or {"data":
/// {"success": false, "error": {"code", "message"}}}, from the platform's
/// reply queue; a handler released meanwhile answers nothing.
class LocalAuthenticationHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuAuthenticateOnDevice";
  static constexpr std::string_view kLAErrorDomain = "com.vantu.LocalAuthenticationHandler";
  static constexpr std::int64_t kLAGenericErrorCode = 0;
  static constexpr std::string_view kLAGenericErrorMessage = "Local authentication encountered an error!";
  static constexpr std::int64_t kLAUserCancelledErrorCode = 1;
  static constexpr std::string_view kLAUserCancelledErrorMessage = "Authentication was cancelled by the user!";
  static constexpr std::int64_t kLAMaximumNumberOfAttemptsExceededErrorCode = 2;
  static constexpr std::string_view kLAMaximumNumberOfAttemptsExceededErrorMessage =
      "Maximum number of attempts exceeded!";
  static constexpr std::string_view kLocalAuthenticationHandlerCancelTitle = "Cancel";
  static constexpr std::string_view kLocalAuthenticationHandlerFallbackTitle = "Fallback";
  static constexpr std::string_view kLocalAuthenticationHandlerReason = "You need to authenticate yourself.";

  void handleWith(H5HandlerInputParams params) override;

  /// The error the page is told for a failed evaluation: user cancel and
  /// biometric lockout have codes of their own, everything else (no
  /// system error included) is the generic error.
  static PlatformError mappedError(const std::optional<PlatformError>& systemError);

  /// The context of the evaluation under way, if any.
  std::shared_ptr<AuthenticationContext> authContext() const;

 private:
  void finish(const AuthenticationContext* context);

  // A reply arrives on the platform's queue while the next call may start
  // on the main thread.
  mutable std::mutex mutex_;
  std::shared_ptr<AuthenticationContext> authContext_;
};

}  // namespace vantu
