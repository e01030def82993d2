#include "vantu/device/local_authentication_handler.h"

#include "vantu/platform/platform.h"

namespace vantu {
namespace {

Dict failurePayload(const PlatformError& error) {
  return Dict{{"data", Dict{{"success", false},
                            {"error", Dict{{"code", error.code}, {"message", error.localizedDescription}}}}}};
}

}  // namespace

PlatformError LocalAuthenticationHandler::mappedError(const std::optional<PlatformError>& systemError) {
  auto make = [](std::int64_t code, std::string_view message) {
    return PlatformError{std::string(kLAErrorDomain), code, std::string(message), std::nullopt, {}};
  };
  if (systemError && systemError->code == authentication_error::kUserCancel)
    return make(kLAUserCancelledErrorCode, kLAUserCancelledErrorMessage);
  if (systemError && systemError->code == authentication_error::kBiometryLockout)
    return make(kLAMaximumNumberOfAttemptsExceededErrorCode, kLAMaximumNumberOfAttemptsExceededErrorMessage);
  return make(kLAGenericErrorCode, kLAGenericErrorMessage);
}

std::shared_ptr<AuthenticationContext> LocalAuthenticationHandler::authContext() const {
  std::lock_guard lock(mutex_);
  return authContext_;
}

void LocalAuthenticationHandler::finish(const AuthenticationContext* context) {
  std::lock_guard lock(mutex_);
  // A later call may have replaced the context; that one stays.
  if (authContext_.get() == context) authContext_.reset();
}

void LocalAuthenticationHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  const auto& service = platform().deviceOwnerAuthentication;
  if (!service) return params.callback(failurePayload(mappedError(std::nullopt)));

  auto context = service->makeContext();
  {
    std::lock_guard lock(mutex_);
    authContext_ = context;
  }
  context->setLocalizedCancelTitle(
      params.data.getString("Cancel").value_or(std::string(kLocalAuthenticationHandlerCancelTitle)));
  context->setLocalizedFallbackTitle(
      params.data.getString("Fallback").value_or(std::string(kLocalAuthenticationHandlerFallbackTitle)));
  auto reason = params.data.getString("authenticationReason").value_or(std::string(kLocalAuthenticationHandlerReason));

  context->evaluateDeviceOwnerAuthentication(
      std::move(reason), [weak = weakSelf(this), callback = std::move(params.callback), which = context.get()](
                             bool success, std::optional<PlatformError> error) {
        auto self = weak.lock();
        if (!self) return;
        callback(success ? Dict{{"data", Dict{{"success", true}}}} : failurePayload(mappedError(error)));
        self->finish(which);
      });
}

}  // namespace vantu
