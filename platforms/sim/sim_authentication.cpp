#include "platforms/sim/sim_authentication.h"

namespace vantu::sim {
namespace {

class SimAuthenticationContext : public AuthenticationContext {
 public:
  explicit SimAuthenticationContext(std::weak_ptr<SimDeviceOwnerAuthentication> service)
      : service_(std::move(service)) {}

 protected:
  void doEvaluateDeviceOwnerAuthentication(std::string reason, Reply reply) override {
    if (auto service = service_.lock()) service->evaluate(*this, reason, std::move(reply));
  }

 private:
  std::weak_ptr<SimDeviceOwnerAuthentication> service_;
};

}  // namespace

std::optional<std::string> readAuthenticationAnswer(const Value& value, AuthenticationAnswer& out) {
  const Dict* d = value.asDict();
  const Value* success = d ? d->find("success") : nullptr;
  const Value* error = d ? d->find("error") : nullptr;
  if (!d || d->size() != 1 || (success && !success->isBool()) || (error && !error->isInt()) || (!success && !error))
    return std::string("an answer is {\"success\": true | false} or {\"error\": CODE}");
  out = success ? AuthenticationAnswer{*success->asBool(), std::nullopt}
                : AuthenticationAnswer{false, *error->asInt()};
  return std::nullopt;
}

SimDeviceOwnerAuthentication::SimDeviceOwnerAuthentication(std::shared_ptr<Dispatch> dispatch,
                                                           std::shared_ptr<EffectLog> effects)
    : queue_(dispatch->makeSerialQueue("sim.deviceOwnerAuthentication")), effects_(std::move(effects)) {}

std::shared_ptr<AuthenticationContext> SimDeviceOwnerAuthentication::doMakeContext() {
  return std::make_shared<SimAuthenticationContext>(weak_from_this());
}

void SimDeviceOwnerAuthentication::evaluate(const AuthenticationContext& context, const std::string& reason,
                                            AuthenticationContext::Reply reply) {
  if (policyError) return this->reply(AuthenticationAnswer{false, policyError}, std::move(reply));
  effects_->record(Dict{{"effect", "authenticationPrompt"},
                        {"reason", reason},
                        {"cancelTitle", context.localizedCancelTitle()},
                        {"fallbackTitle", context.localizedFallbackTitle()}});
  if (answer) {
    this->reply(*answer, std::move(reply));
  } else {
    held_.push_back(std::move(reply));
  }
}

bool SimDeviceOwnerAuthentication::answerHeldSheets(const AuthenticationAnswer& given) {
  if (held_.empty()) return false;
  for (auto& waiting : std::exchange(held_, {})) reply(given, std::move(waiting));
  return true;
}

void SimDeviceOwnerAuthentication::reply(const AuthenticationAnswer& given, AuthenticationContext::Reply reply) {
  std::optional<PlatformError> error;
  if (given.errorCode) {
    error = PlatformError{"sim.deviceOwnerAuthentication", *given.errorCode,
                          "Authentication failed with code " + std::to_string(*given.errorCode), std::nullopt, {}};
  }
  queue_->async([reply = std::move(reply), success = given.success, error = std::move(error)] { reply(success, error); });
}

}  // namespace vantu::sim
