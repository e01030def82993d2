#include "host_delegate.h"

namespace host_app {
namespace {

vantu::PlatformError hostError(int code, std::string text) {
  vantu::PlatformError error;
  error.domain = "HostAppErrorDomain";
  error.code = code;
  error.localizedDescription = std::move(text);
  return error;
}

}  // namespace

void HostDelegate::login(vantu::Dict, vantu::DelegateHandler handler) {
  if (host_.session.signedIn()) return handler(true, std::nullopt, std::nullopt);
  host_.login.ask(host_.window(), [this, handler = std::move(handler)](std::optional<std::string> user) {
    if (!user) return handler(false, hostError(1, "the user cancelled the sign-in"), std::nullopt);
    host_.session.signIn(*user);
    handler(true, std::nullopt, std::nullopt);
  });
}

void HostDelegate::logout(vantu::Dict, vantu::DelegateHandler handler) {
  host_.session.signOut();
  handler(true, std::nullopt, std::nullopt);
}

void HostDelegate::handleSessionExpiry(vantu::Dict, vantu::DelegateHandler handler) {
  // The host drops the expired session; the next login asks again.
  host_.session.signOut();
  handler(true, std::nullopt, std::nullopt);
}

void HostDelegate::fetchAuthToken(vantu::Dict, vantu::DelegateHandler handler) {
  if (!host_.session.signedIn()) return handler(false, hostError(2, "nobody is signed in"), std::nullopt);
  handler(true, std::nullopt, vantu::Value(vantu::Dict{{"accessToken", host_.session.token()}, {"tokenType", "Bearer"}}));
}

void HostDelegate::getCustomerId(vantu::DelegateHandler handler) {
  if (!host_.session.signedIn()) return handler(false, hostError(2, "nobody is signed in"), std::nullopt);
  handler(true, std::nullopt, vantu::Value(host_.session.customerId()));
}

void HostDelegate::fetchValuesForKeys(std::vector<std::string> keys, vantu::DelegateHandler handler) {
  vantu::Dict values;
  for (const auto& key : keys) {
    if (auto found = host_.settings.find(key); found != host_.settings.end()) values.set(key, found->second);
  }
  handler(true, std::nullopt, vantu::Value(std::move(values)));
}

void HostDelegate::navigate(std::string to, std::optional<vantu::Dict>, bool, bool, vantu::DelegateHandler handler) {
  if (!host_.navigate(to)) return handler(false, hostError(3, "no such destination: " + to), std::nullopt);
  handler(true, std::nullopt, vantu::Value(vantu::Dict{{"opened", to}}));
}

void HostDelegate::openDeeplink(std::string deeplink, vantu::DelegateHandler handler) {
  if (!host_.openDeeplink(deeplink)) return handler(false, hostError(4, "not a link of this host"), std::nullopt);
  handler(true, std::nullopt, std::nullopt);
}

void HostDelegate::trackCustomEventFor(vantu::Dict variables, vantu::DelegateHandler handler) {
  host_.analytics.record(appId_, variables);
  handler(true, std::nullopt, std::nullopt);
}

}  // namespace host_app
