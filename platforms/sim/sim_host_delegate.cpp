#include "platforms/sim/sim_host_delegate.h"

#include "platforms/sim/sim_ui.h"

namespace vantu::sim {
namespace {

Dict requestValue(const UrlRequest& request) {
  Dict headers;
  for (const auto& [name, value] : request.headers) headers.set(name, value);
  return Dict{{"url", request.url}, {"method", request.method}, {"headers", std::move(headers)},
              {"timeout", request.timeoutSeconds}};
}

Array stringArray(const std::vector<std::string>& strings) {
  Array a;
  a.reserve(strings.size());
  for (const auto& s : strings) a.emplace_back(s);
  return a;
}

}  // namespace

SimHostDelegate::SimHostDelegate(std::string name, std::shared_ptr<Dispatch> dispatch, CallRecorder record)
    : name_(std::move(name)), dispatch_(std::move(dispatch)), record_(std::move(record)) {}

void SimHostDelegate::script(std::string operation, std::optional<ScriptedAnswer> answer) {
  answers_[std::move(operation)] = std::move(answer);
}

std::optional<ScriptedAnswer> SimHostDelegate::scripted(std::string_view operation) const {
  auto it = answers_.find(operation);
  return it != answers_.end() ? it->second : otherwise_;
}

template <class Fallback>
void SimHostDelegate::handle(std::string_view operation, Dict arguments, DelegateHandler handler, Fallback fallback) {
  auto answer = scripted(operation);
  if (!answer) {
    fallback(std::move(handler));
    return;
  }
  if (record_) record_(name_, operation, std::move(arguments));
  if (answer->never || !handler) return;
  auto deliver = [handler = std::move(handler), answer = *answer] { handler(answer.success, answer.error, answer.value); };
  if (answer->afterSeconds) {
    dispatch_->main()->asyncAfter(secondsToDuration(*answer->afterSeconds), std::move(deliver));
  } else {
    deliver();
  }
}

void SimHostDelegate::popToHome(std::string pageKey, std::shared_ptr<ViewController> viewController,
                                DelegateHandler handler) {
  handle("popToHome", Dict{{"pageKey", pageKey}, {"viewController", describe(viewController.get())}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::popToHome(pageKey, viewController, std::move(h)); });
}

void SimHostDelegate::navigate(std::string to, std::optional<Dict> data, bool clearBackStack, bool finishThis,
                               DelegateHandler handler) {
  handle("navigate",
         Dict{{"to", to}, {"data", data ? Value(*data) : Value()}, {"clearBackStack", clearBackStack},
              {"finishThis", finishThis}},
         std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::navigate(to, data, clearBackStack, finishThis, std::move(h)); });
}

void SimHostDelegate::openDeeplink(std::string deeplink, DelegateHandler handler) {
  handle("openDeeplink", Dict{{"deeplink", deeplink}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::openDeeplink(deeplink, std::move(h)); });
}

void SimHostDelegate::login(Dict data, DelegateHandler handler) {
  handle("login", Dict{{"data", data}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::login(data, std::move(h)); });
}

void SimHostDelegate::logout(Dict data, DelegateHandler handler) {
  handle("logout", Dict{{"data", data}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::logout(data, std::move(h)); });
}

void SimHostDelegate::handleSessionExpiry(Dict data, DelegateHandler handler) {
  handle("handleSessionExpiry", Dict{{"data", data}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::handleSessionExpiry(data, std::move(h)); });
}

void SimHostDelegate::fetchAuthToken(Dict data, DelegateHandler handler) {
  handle("fetchAuthToken", Dict{{"data", data}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::fetchAuthToken(data, std::move(h)); });
}

void SimHostDelegate::fetchParamsAgainstKey(std::string key, DelegateHandler handler) {
  handle("fetchParamsAgainstKey", Dict{{"key", key}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::fetchParamsAgainstKey(key, std::move(h)); });
}

void SimHostDelegate::fetchValuesForKeys(std::vector<std::string> keys, DelegateHandler handler) {
  handle("fetchValuesForKeys", Dict{{"keys", stringArray(keys)}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::fetchValuesForKeys(keys, std::move(h)); });
}

void SimHostDelegate::trackCustomEventFor(Dict variables, DelegateHandler handler) {
  handle("trackCustomEventFor", Dict{{"variables", variables}}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::trackCustomEventFor(variables, std::move(h)); });
}

void SimHostDelegate::getCustomerId(DelegateHandler handler) {
  handle("getCustomerId", Dict{}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::getCustomerId(std::move(h)); });
}

void SimHostDelegate::trackWithOstrix(std::optional<UrlRequest> request, std::optional<HttpUrlResponse> response,
                                      std::optional<PlatformError> error, double responseTime,
                                      std::optional<Bytes> reponseData, std::optional<TaskMetrics> metrics,
                                      std::optional<std::string> customMessage,
                                      std::optional<Dict> additionalParams, DelegateHandler handler) {
  Dict arguments{
      {"request", request ? Value(requestValue(*request)) : Value()},
      {"status", response ? Value(response->statusCode) : Value()},
      {"error", error ? platformErrorValue(*error) : Value()},
      {"responseTime", responseTime},
      {"responseDataLength", reponseData ? Value(static_cast<std::int64_t>(reponseData->data.size())) : Value()},
      {"hasMetrics", metrics.has_value()},
  };
  handle("trackWithOstrix", std::move(arguments), std::move(handler), [&](DelegateHandler h) {
    VantuH5Delegate::trackWithOstrix(request, response, error, responseTime, reponseData, metrics, customMessage,
                                     additionalParams, std::move(h));
  });
}

void SimHostDelegate::getAppInfo(DelegateHandler handler) {
  handle("getAppInfo", Dict{}, std::move(handler),
         [&](DelegateHandler h) { VantuH5Delegate::getAppInfo(std::move(h)); });
}

}  // namespace vantu::sim
