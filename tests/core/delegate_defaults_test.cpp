// What a host delegate does for the operations it does not override (fail at
// once, or forward to the environment's delegate), and which delegate
// receives the "Bridge Analytics" events.

#include "vantu/core/vantu_h5_delegate.h"

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/h5_base_handler.h"
#include "vantu/core/h5_data_providers.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {
namespace {

/// Implements every operation: records the arguments, answers (true, no error, "from <operation>").
class FullDelegate : public VantuH5Delegate {
 public:
  std::vector<std::string> calls;  // "<operation> <arguments as JSON>"

  void popToHome(std::string pageKey, std::shared_ptr<ViewController> vc, DelegateHandler h) override {
    answer("popToHome", Dict{{"pageKey", pageKey}, {"viewController", vc ? vc->name() : ""}}, h);
  }
  void navigate(std::string to, std::optional<Dict> data, bool clearBackStack, bool finishThis,
                DelegateHandler h) override {
    answer("navigate",
           Dict{{"to", to}, {"data", data ? Value(*data) : Value()}, {"clear", clearBackStack}, {"finish", finishThis}}, h);
  }
  void openDeeplink(std::string deeplink, DelegateHandler h) override { answer("openDeeplink", Dict{{"link", deeplink}}, h); }
  void login(Dict data, DelegateHandler h) override { answer("login", data, h); }
  void logout(Dict data, DelegateHandler h) override { answer("logout", data, h); }
  void handleSessionExpiry(Dict data, DelegateHandler h) override { answer("handleSessionExpiry", data, h); }
  void fetchAuthToken(Dict data, DelegateHandler h) override { answer("fetchAuthToken", data, h); }
  void fetchParamsAgainstKey(std::string, DelegateHandler h) override { answer("fetchParamsAgainstKey", {}, h); }
  void fetchValuesForKeys(std::vector<std::string>, DelegateHandler h) override { answer("fetchValuesForKeys", {}, h); }
  void trackCustomEventFor(Dict variables, DelegateHandler h) override { answer("trackCustomEventFor", variables, h); }
  void getCustomerId(DelegateHandler h) override { answer("getCustomerId", Dict{}, h); }
  void trackWithOstrix(std::optional<UrlRequest> request, std::optional<HttpUrlResponse> response,
                       std::optional<PlatformError> error, double responseTime, std::optional<Bytes> data,
                       std::optional<TaskMetrics> metrics, std::optional<std::string> customMessage,
                       std::optional<Dict> additionalParams, DelegateHandler h) override {
    answer("trackWithOstrix",
           Dict{{"url", request ? Value(request->url) : Value()},
                {"status", response ? Value(response->statusCode) : Value()},
                {"errorCode", error ? Value(error->code) : Value()},
                {"responseTime", responseTime},
                {"bytes", data ? Value(static_cast<std::int64_t>(data->data.size())) : Value()},
                {"metrics", metrics.has_value()},
                {"message", customMessage ? Value(*customMessage) : Value()},
                {"params", additionalParams ? Value(*additionalParams) : Value()}},
           h);
  }
  void getAppInfo(DelegateHandler h) override { answer("getAppInfo", Dict{}, h); }

 private:
  void answer(const std::string& operation, const Dict& arguments, const DelegateHandler& h) {
    calls.push_back(operation + " " + json::write(arguments));
    h(true, std::nullopt, Value("from " + operation));
  }
};

struct Operation {
  std::string name;
  std::string selector;
  bool forwards;
  std::string arguments;  // as FullDelegate records them; empty when it must not be reached
  std::function<void(VantuH5Delegate&, DelegateHandler)> call;
};

std::vector<Operation> operations(const std::shared_ptr<ViewController>& caller) {
  return {
      {"popToHome", "popToHome(pageKey:viewController:handler:)", true, R"({"pageKey":"home","viewController":"caller"})",
       [caller](VantuH5Delegate& d, DelegateHandler h) { d.popToHome("home", caller, h); }},
      {"navigate", "navigate(to:data:clearBackStack:finishThis:handler:)", true,
       R"({"to":"orders","data":{"id":9},"clear":true,"finish":false})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.navigate("orders", Dict{{"id", 9}}, true, false, h); }},
      {"openDeeplink", "openDeeplink(deeplink:handler:)", true, R"({"link":"app://x"})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.openDeeplink("app://x", h); }},
      {"login", "login(data:handler:)", true, R"({"user":"u"})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.login(Dict{{"user", "u"}}, h); }},
      {"logout", "logout(data:handler:)", true, R"({"why":"bye"})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.logout(Dict{{"why", "bye"}}, h); }},
      {"handleSessionExpiry", "handleSessionExpiry(data:handler:)", true, R"({"s":1})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.handleSessionExpiry(Dict{{"s", 1}}, h); }},
      {"fetchAuthToken", "fetchAuthToken(data:handler:)", true, R"({"h5_uaid_caller":"mini-1"})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.fetchAuthToken(Dict{{"h5_uaid_caller", "mini-1"}}, h); }},
      {"fetchParamsAgainstKey", "fetchParamsAgainstKey(key:handler:)", false, "",
       [](VantuH5Delegate& d, DelegateHandler h) { d.fetchParamsAgainstKey("k", h); }},
      {"fetchValuesForKeys", "fetchValuesForKeys(keys:handler:)", false, "",
       [](VantuH5Delegate& d, DelegateHandler h) { d.fetchValuesForKeys({"a", "b"}, h); }},
      {"trackCustomEventFor", "trackCustomEventFor(variables:handler:)", true, R"({"event":"e"})",
       [](VantuH5Delegate& d, DelegateHandler h) { d.trackCustomEventFor(Dict{{"event", "e"}}, h); }},
      {"getCustomerId", "getCustomerId(handler:)", true, "{}",
       [](VantuH5Delegate& d, DelegateHandler h) { d.getCustomerId(h); }},
      {"trackWithOstrix",
       "trackWithOstrix(_:response:error:responseTime:reponseData:metrics:customMessage:additionalParams:handler:)", true,
       R"({"url":"https://h/x","status":201,"errorCode":5,"responseTime":1.5,"bytes":3,"metrics":true,"message":"note","params":{"p":1}})",
       [](VantuH5Delegate& d, DelegateHandler h) {
         d.trackWithOstrix(UrlRequest{"https://h/x"}, HttpUrlResponse{"https://h/x", 201}, PlatformError{"Net", 5, "down"},
                           1.5, Bytes{{1, 2, 3}}, TaskMetrics{}, "note", Dict{{"p", 1}}, h);
       }},
      {"getAppInfo", "getAppInfo(handler:)", true, "{}", [](VantuH5Delegate& d, DelegateHandler h) { d.getAppInfo(h); }},
  };
}

struct Answer {
  int count = 0;
  bool success = false;
  std::optional<PlatformError> error;
  std::optional<Value> value;
  std::thread::id thread;
};

/// Calls the operation and returns what reached the handler before the call returned.
Answer callNow(const Operation& op, VantuH5Delegate& delegate) {
  Answer answer;
  op.call(delegate, [&answer](bool success, std::optional<PlatformError> error, std::optional<Value> value) {
    answer = {answer.count + 1, success, std::move(error), std::move(value), std::this_thread::get_id()};
  });
  return answer;
}

void expectDefaultFailure(const Answer& answer, const Operation& op) {
  ASSERT_EQ(answer.count, 1);
  EXPECT_EQ(answer.thread, std::this_thread::get_id());
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
  auto full = std::make_shared<FullDelegate>();
  struct Case {
    const char* name;
    bool setUp;
    std::shared_ptr<VantuH5Delegate> environment;
  };
  const Case cases[] = {{"no environment", false, nullptr},
                        {"environment without a delegate", true, nullptr},
                        {"environment delegate keeping the defaults", true, keepsDefaults},
                        {"working environment delegate", true, full}};
  for (const auto& c : cases) {
    if (c.setUp) Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(nullptr, nullptr, c.environment));
    for (const auto& op : operations(caller)) {
      SCOPED_TRACE(std::string(c.name) + ": " + op.name);
      full->calls.clear();
      auto answer = callNow(op, *bare);
      if (c.environment == keepsDefaults) expectDefaultFailure(callNow(op, *keepsDefaults), op);
      if (c.environment != full || !op.forwards) {
        expectDefaultFailure(answer, op);
        EXPECT_TRUE(full->calls.empty());
        continue;
      }
      EXPECT_EQ(full->calls, std::vector<std::string>{op.name + " " + op.arguments});
      EXPECT_TRUE(answer.count == 1 && answer.success && !answer.error);
      EXPECT_EQ(answer.value, Value("from " + op.name));
    }
  }
}

TEST_F(DelegateDefaultsTest, AnalyticsGoOnceToTheNearestScreenDelegateWithinTwoLevels) {
  constexpr int kNone = -1;
  struct Case {
    const char* name;
    int delegateAt;  // levels above the calling screen, or kNone
    int idAt;        // levels above the calling screen, or kNone
    bool plainObjectOnSelf;
    bool noScreen;
    std::optional<std::string> category;  // nullopt: no event expected
  };
  const Case cases[] = {
      {"delegate and id on self", 0, 0, false, false, "app-1"},
      {"delegate on parent, id on grandparent", 1, 2, false, false, "app-1"},
      {"delegate on grandparent, no id", 2, kNone, false, false, ""},
      {"id beyond reach", 2, 3, false, false, ""},
      {"delegate on great-grandparent", 3, 0, false, false, std::nullopt},
      {"plain object on self hides parent's delegate", 1, 0, true, false, std::nullopt},
      {"no delegate on the screens", kNone, 0, false, false, std::nullopt},
      {"no calling screen", 0, 0, false, true, std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto environment = std::make_shared<FullDelegate>();
    Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(nullptr, nullptr, environment));
    std::vector<std::shared_ptr<ViewController>> levels;
    for (int i = 0; i < 4; ++i) levels.push_back(std::make_shared<ViewController>());
    for (int i = 3; i > 0; --i) levels[i]->addChild(levels[i - 1]);
    auto screenDelegate = std::make_shared<FullDelegate>();
    if (c.delegateAt != kNone) setVH5ViewControllerDelegate(*levels[c.delegateAt], screenDelegate);
    if (c.idAt != kNone) setUniqueAppIdentifier(*levels[c.idAt], "app-1");
    if (c.plainObjectOnSelf) setVH5ViewControllerDelegate(*levels[0], std::make_shared<Object>());

    std::make_shared<H5BaseHandler>()->trackData(
        "someBridge", H5HandlerInputParams(c.noScreen ? nullptr : levels[0], Dict{}, [](const Value&) {}));
    EXPECT_TRUE(environment->calls.empty());
    std::vector<std::string> expected;
    if (c.category) {
      expected.push_back(
          "trackCustomEventFor " + json::write(Dict{{"event", "custom_event"}, {"event_action", "Bridge Analytics"},
                                                    {"event_label", "someBridge"}, {"event_label2", "5.6.0"},
                                                    {"vertical_name", "mini_app"}, {"event_category", *c.category}}));
    }
    EXPECT_EQ(screenDelegate->calls, expected);
  }
}

}  // namespace
}  // namespace vantu
