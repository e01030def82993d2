// What a host delegate does for the operations it does not override: fail at
// once, or forward to the environment's delegate. Which delegate receives the
// "Bridge Analytics" events is pinned by runner case 02.

#include "vantu/core/vantu_h5_delegate.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/h5_data_providers.h"
#include "vantu/core/laizaxlu.h"

namespace vantu {
namespace {

/// The scenario's host delegate records neither of these two trackWithOstrix arguments.
class OstrixExtras : public VantuH5Delegate {
 public:
  void trackWithOstrix(std::optional<UrlRequest>, std::optional<HttpUrlResponse>, std::optional<PlatformError>, double,
                       std::optional<Bytes>, std::optional<TaskMetrics>, std::optional<std::string> customMessage,
                       std::optional<Dict> additionalParams, DelegateHandler) override {
    seen = customMessage.value_or("") + " " + json::write(additionalParams.value_or(Dict{}));
  }
  std::string seen;
};

struct Operation {
  std::string name;
  std::string selector;
  std::string arguments;  // as the scenario's host delegate records them; empty when it must not be reached
  std::function<void(VantuH5Delegate&, DelegateHandler)> call;
};

std::vector<Operation> operations(const std::shared_ptr<ViewController>& caller) {
  return {
      {"popToHome", "popToHome(pageKey:viewController:handler:)", R"({"pageKey":"home","viewController":"caller"})",
       [caller](VantuH5Delegate& d, DelegateHandler h) { d.popToHome("home", caller, h); }},
      {"navigate", "navigate(to:data:clearBackStack:finishThis:handler:)",
       R"({"to":"orders","data":{"id":9},"clearBackStack":true,"finishThis":false})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.navigate("orders", Dict{{"id", 9}}, true, false, h); }},
      {"openDeeplink", "openDeeplink(deeplink:handler:)", R"({"deeplink":"app://x"})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.openDeeplink("app://x", h); }},
      {"login", "login(data:handler:)", R"({"data":{"user":"u"}})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.login(Dict{{"user", "u"}}, h); }},
      {"logout", "logout(data:handler:)", R"({"data":{"why":"bye"}})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.logout(Dict{{"why", "bye"}}, h); }},
      {"handleSessionExpiry", "handleSessionExpiry(data:handler:)", R"({"data":{"s":1}})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.handleSessionExpiry(Dict{{"s", 1}}, h); }},
      {"fetchAuthToken", "fetchAuthToken(data:handler:)", R"({"data":{"h5_uaid_caller":"mini-1"}})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.fetchAuthToken(Dict{{"h5_uaid_caller", "mini-1"}}, h); }},
      {"fetchParamsAgainstKey", "fetchParamsAgainstKey(key:handler:)", "",
       [](VantuH5Delegate& d, DelegateHandler h) { d.fetchParamsAgainstKey("k", h); }},
      {"fetchValuesForKeys", "fetchValuesForKeys(keys:handler:)", "",
       [](VantuH5Delegate& d, DelegateHandler h) { d.fetchValuesForKeys({"a", "b"}, h); }},
      {"trackCustomEventFor", "trackCustomEventFor(variables:handler:)", R"({"variables":{"event":"e"}})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.trackCustomEventFor(Dict{{"event", "e"}}, h); }},
      {"getCustomerId", "getCustomerId(handler:)", "{}",
       [](VantuH5Delegate& d, DelegateHandler h) { d.getCustomerId(h); }},
      {"trackWithOstrix",
       "trackWithOstrix(_:response:error:responseTime:reponseData:metrics:customMessage:additionalParams:handler:)",
       R"({"request":{"url":"https://h/x","method":"GET","headers":{},"timeout":60},"status":201,)"
       R"("error":{"domain":"N","code":5,"message":"x"},"responseTime":1.5,"responseDataLength":3,"hasMetrics":true})",
       [](VantuH5Delegate& d, DelegateHandler h) {
         d.trackWithOstrix(UrlRequest{"https://h/x"}, HttpUrlResponse{"https://h/x", 201}, PlatformError{"N", 5, "x"},
                           1.5, Bytes{{1, 2, 3}}, TaskMetrics{}, "note", Dict{{"p", 1}}, h);
       }},
      {"getAppInfo", "getAppInfo(handler:)", "{}", [](VantuH5Delegate& d, DelegateHandler h) { d.getAppInfo(h); }},
  };
}

struct Answer {
  int count = 0;
  bool success = false;
  std::optional<PlatformError> error;
  std::optional<Value> value;
};

/// Calls the operation and returns what reached the handler before the call returned.
Answer callNow(const Operation& op, VantuH5Delegate& delegate) {
  Answer answer;
  op.call(delegate, [&answer](bool success, std::optional<PlatformError> error, std::optional<Value> value) {
    answer = {answer.count + 1, success, std::move(error), std::move(value)};
  });
  return answer;
}

void expectDefaultFailure(const Answer& answer, const Operation& op) {
  ASSERT_EQ(answer.count, 1);
  EXPECT_FALSE(answer.success || answer.value);
  ASSERT_TRUE(answer.error.has_value());
  EXPECT_EQ(answer.error->domain, "VantuH5DelegateErrorDomain");
  EXPECT_EQ(answer.error->code, -1);
  EXPECT_EQ(answer.error->localizedDescription, "Implementation in VantuH5Delegate invoked.");
  EXPECT_EQ(answer.error->localizedFailureReason, "Running default implementation of the method: " + op.selector);
}

using DelegateDefaultsTest = testing_support::BridgeTestFixture;

TEST_F(DelegateDefaultsTest, DefaultsFailAtOnceUnlessAWorkingEnvironmentDelegateTakesTheCall) {
  auto caller = std::make_shared<ViewController>();
  caller->setName("caller");
  auto bare = std::make_shared<VantuH5Delegate>();
  auto keepsDefaults = std::make_shared<VantuH5Delegate>();
  apply(R"({"delegates": {"host": {"otherwise": {"success": true, "value": "answered"}}}})");
  auto host = std::dynamic_pointer_cast<VantuH5Delegate>(device.object("host"));
  struct Case {
    const char* name;
    bool setUp;
    std::shared_ptr<VantuH5Delegate> environment;
  };
  const Case cases[] = {{"no environment", false, nullptr},
                        {"environment without a delegate", true, nullptr},
                        {"environment delegate keeping the defaults", true, keepsDefaults},
                        {"working environment delegate", true, host}};
  for (const auto& c : cases) {
    if (c.setUp) Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(nullptr, nullptr, c.environment));
    for (const auto& op : operations(caller)) {
      SCOPED_TRACE(std::string(c.name) + ": " + op.name);
      auto answer = callNow(op, *bare);
      auto calls = device.takeDelegateCalls();
      if (c.environment != host || op.arguments.empty()) {
        expectDefaultFailure(answer, op);
        EXPECT_TRUE(calls.empty());
        continue;
      }
      ASSERT_EQ(calls.size(), 1u);
      EXPECT_EQ(json::write(*calls[0].find("arguments")), op.arguments);
      EXPECT_EQ(calls[0].getString("operation"), op.name);
      EXPECT_TRUE(answer.count == 1 && answer.success && !answer.error);
      EXPECT_EQ(answer.value, Value("answered"));
    }
  }
  auto extras = std::make_shared<OstrixExtras>();
  Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(nullptr, nullptr, extras));
  bare->trackWithOstrix(std::nullopt, std::nullopt, std::nullopt, 0, std::nullopt, std::nullopt, "note", Dict{{"p", 1}},
                        [](bool, std::optional<PlatformError>, std::optional<Value>) {});
  EXPECT_EQ(extras->seen, R"(note {"p":1})");
}

}  // namespace
}  // namespace vantu
