#include "vantu/core/vantu_h5_delegate.h"

#include "vantu/core/laizaxlu.h"

namespace vantu {
namespace {

constexpr std::string_view kPopToHome = "popToHome(pageKey:viewController:handler:)";
constexpr std::string_view kNavigate = "navigate(to:data:clearBackStack:finishThis:handler:)";
constexpr std::string_view kOpenDeeplink = "openDeeplink(deeplink:handler:)";
constexpr std::string_view kLogin = "login(data:handler:)";
constexpr std::string_view kLogout = "logout(data:handler:)";
constexpr std::string_view kHandleSessionExpiry = "handleSessionExpiry(data:handler:)";
constexpr std::string_view kFetchAuthToken = "fetchAuthToken(data:handler:)";
constexpr std::string_view kFetchParamsAgainstKey = "fetchParamsAgainstKey(key:handler:)";
constexpr std::string_view kFetchValuesForKeys = "fetchValuesForKeys(keys:handler:)";
constexpr std::string_view kTrackCustomEventFor = "trackCustomEventFor(variables:handler:)";
constexpr std::string_view kGetCustomerId = "getCustomerId(handler:)";
constexpr std::string_view kTrackWithOstrix =
    "trackWithOstrix(_:response:error:responseTime:reponseData:metrics:customMessage:additionalParams:handler:)";
constexpr std::string_view kGetAppInfo = "getAppInfo(handler:)";

void fail(const DelegateHandler& handler, std::string_view selector) {
  if (handler) handler(false, VantuH5Delegate::defaultImplementationError(selector), std::nullopt);
}

}  // namespace

PlatformError VantuH5Delegate::defaultImplementationError(std::string_view selector) {
  PlatformError error;
  error.domain = std::string(kErrorDomain);
  error.code = -1;
  error.localizedDescription = "Implementation in VantuH5Delegate invoked.";
  error.localizedFailureReason = "Running default implementation of the method: " + std::string(selector);
  return error;
}

std::shared_ptr<VantuH5Delegate> VantuH5Delegate::forwardTarget() const {
  auto providers = Laizaxlu::shared().h5DataProviders();
  auto target = providers ? providers->h5Delegate() : nullptr;
  return target.get() == this ? nullptr : target;
}

void VantuH5Delegate::popToHome(std::string pageKey, std::shared_ptr<ViewController> viewController,
                                DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->popToHome(std::move(pageKey), std::move(viewController), std::move(handler));
  fail(handler, kPopToHome);
}

void VantuH5Delegate::navigate(std::string to, std::optional<Dict> data, bool clearBackStack, bool finishThis,
                               DelegateHandler handler) {
  if (auto target = forwardTarget())
    return target->navigate(std::move(to), std::move(data), clearBackStack, finishThis, std::move(handler));
  fail(handler, kNavigate);
}

void VantuH5Delegate::openDeeplink(std::string deeplink, DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->openDeeplink(std::move(deeplink), std::move(handler));
  fail(handler, kOpenDeeplink);
}

void VantuH5Delegate::login(Dict data, DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->login(std::move(data), std::move(handler));
  fail(handler, kLogin);
}

void VantuH5Delegate::logout(Dict data, DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->logout(std::move(data), std::move(handler));
  fail(handler, kLogout);
}

void VantuH5Delegate::handleSessionExpiry(Dict data, DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->handleSessionExpiry(std::move(data), std::move(handler));
  fail(handler, kHandleSessionExpiry);
}

void VantuH5Delegate::fetchAuthToken(Dict data, DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->fetchAuthToken(std::move(data), std::move(handler));
  fail(handler, kFetchAuthToken);
}

// The two value lookups never forward.
void VantuH5Delegate::fetchParamsAgainstKey(std::string /*key*/, DelegateHandler handler) {
  fail(handler, kFetchParamsAgainstKey);
}

void VantuH5Delegate::fetchValuesForKeys(std::vector<std::string> /*keys*/, DelegateHandler handler) {
  fail(handler, kFetchValuesForKeys);
}

void VantuH5Delegate::trackCustomEventFor(Dict variables, DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->trackCustomEventFor(std::move(variables), std::move(handler));
  fail(handler, kTrackCustomEventFor);
}

void VantuH5Delegate::getCustomerId(DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->getCustomerId(std::move(handler));
  fail(handler, kGetCustomerId);
}

void VantuH5Delegate::trackWithOstrix(std::optional<UrlRequest> request, std::optional<HttpUrlResponse> response,
                                      std::optional<PlatformError> error, double responseTime,
                                      std::optional<Bytes> reponseData, std::optional<TaskMetrics> metrics,
                                      std::optional<std::string> customMessage, std::optional<Dict> additionalParams,
                                      DelegateHandler handler) {
  if (auto target = forwardTarget()) {
    return target->trackWithOstrix(std::move(request), std::move(response), std::move(error), responseTime,
                                   std::move(reponseData), std::move(metrics), std::move(customMessage),
                                   std::move(additionalParams), std::move(handler));
  }
  fail(handler, kTrackWithOstrix);
}

void VantuH5Delegate::getAppInfo(DelegateHandler handler) {
  if (auto target = forwardTarget()) return target->getAppInfo(std::move(handler));
  fail(handler, kGetAppInfo);
}

}  // namespace vantu
