// The host-delegated bridges, called through the registry from the screens of
// one simulated app whose host delegate each test scripts:
//   shell (delegate "host", id "mini.shop") > page > frame
//   bare: nothing attached (the environment still has "envHost"); plainHolder: a plain object, not a delegate
//   anon: delegate "host", no id;  top (id "mini.top") > l1 > l2 > l3 (delegate "host")
//   far (delegate "host") > far1 > far2 > far3
// Which delegate an operation the host does not script reaches is pinned by tests/core/delegate_defaults_test.cpp.

#include <memory>
#include <string>
#include <string_view>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/core/view_controller_context.h"

namespace vantu::testing_support {
namespace {

/// Every bridge of the family with arguments that pass its checks, what the host receives (operation and
/// arguments), the answers when the host gives {"v": 1} and the error message when it fails.
struct FamilyBridge {
  std::string_view bridge, validData, hostCall;
  Strings answers;
  std::string_view hostFailed;
};
const FamilyBridge kFamily[] = {
    {"vantuOpenDeeplink", R"({"deeplink": "app://o", "x": 1})", R"("openDeeplink","arguments":{"deeplink":"app://o"})",
     {R"({"data":{"success":true}})"}, "Failed Navigation result!"},
    {"vantuNavigateTo", R"({"navigateTo": "orders", "data": {"id": 7}, "clearBackStack": true, "finishThis": false})",
     R"("navigate","arguments":{"to":"orders","data":{"id":7},"clearBackStack":true,"finishThis":false})",
     {R"({"success":true,"data":{"v":1}})"}, "Failed Navigation result!"},
    {"vantuLogin", R"({"b": [true, null], "h5_uaid_caller": "kept"})",
     R"("login","arguments":{"data":{"b":[true,null],"h5_uaid_caller":"kept"}})", {R"({"data":{"success":true}})"},
     "failed to login!"},
    {"vantuLogout", "{}", R"("logout","arguments":{"data":{}})", {R"({"data":{"success":true}})"}, "failed to logout!"},
    {"vantuHandleSessionExpiry", R"({"code": 401})", R"("handleSessionExpiry","arguments":{"data":{"code":401}})",
     {R"({"data":{"success":true}})"}, "failed to handle session expiry!"},
    // The token request names the calling screen's app; a dictionary token is answered as it stands, then wrapped.
    {"vantuFetchAuthToken", R"({"scope": "pay"})",
     R"("fetchAuthToken","arguments":{"data":{"scope":"pay","h5_uaid_caller":"mini.shop"}})",
     {R"({"v":1})", R"({"success":true,"data":{"v":1}})"}, "failed to fetch access token!"},
    {"vantuFetchCustomerId", R"({"x": 1})", R"("getCustomerId","arguments":{})", {R"({"v":1})"},
     "failed to fetch customer id!"},
    {"vantuFetchValuesForKeys", R"({"keys": ["a"]})", R"("fetchValuesForKeys","arguments":{"keys":["a"]})",
     {R"({"data":{"v":1}})"}, "FetchValuesForKeys: Failed to get values for keys!"},
    {"vantuFetchParamsAgainstKey", R"({"key": "p"})", R"("fetchParamsAgainstKey","arguments":{"key":"p"})",
     {R"({"success":true,"data":{"v":1}})"}, "FetchParamsAgainstKeyHandler: Failed to get data!"},
    {"vantuAnalyticsTracking", R"({"event": "open"})",
     R"("trackCustomEventFor","arguments":{"variables":{"event":"open"}})", {R"({"success":true,"data":{"v":1}})"},
     "failed to track Event"},
};

class HostBridges : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    useHost("{}");
  }
  /// Re-applies the app with the delegate entry of "host" given.
  void useHost(std::string_view hostEntry) {
    apply(R"({"delegates": {"host": )" + std::string(hostEntry) +
          R"(, "envHost": {}, "plain": {"kind": "object"}}, "environment": {"delegate": "envHost"},
      "screens": [
        {"name": "shell", "delegate": "host", "uniqueAppIdentifier": "mini.shop",
         "children": [{"name": "page", "children": [{"name": "frame"}]}]},
        {"name": "bare"}, {"name": "plainHolder", "delegate": "plain", "uniqueAppIdentifier": "mini.plain"},
        {"name": "anon", "delegate": "host"},
        {"name": "top", "uniqueAppIdentifier": "mini.top",
         "children": [{"name": "l1", "children": [{"name": "l2", "children": [{"name": "l3", "delegate": "host"}]}]}]},
        {"name": "far", "delegate": "host",
         "children": [{"name": "far1", "children": [{"name": "far2", "children": [{"name": "far3"}]}]}]}]})");
    device.takeDelegateCalls();
  }
  /// Runs `data` (JSON) through `bridge` from "page" with the host answering `hostAnswer` to everything.
  CallOutcome callWithHost(const char* bridge, const char* data, const char* hostAnswer) {
    useHost(std::string(R"({"otherwise": )") + hostAnswer + "}");
    return call(bridge, data, "page");
  }
};

// --- Every failure is a flat error with code 2.

TEST_F(HostBridges, WithoutAScreenOrADelegateWithinReachTheHostIsNotAsked) {
  // "bare" has nothing attached though the environment has a delegate; "plainHolder" no host delegate;
  // "far3" has its only delegate three levels up.
  for (const char* screen : {"", "bare", "plainHolder", "far3"}) {
    for (const auto& b : kFamily) {
      SCOPED_TRACE(std::string(b.bridge) + " from '" + screen + "'");
      const bool valuesForKeys = b.bridge == "vantuFetchValuesForKeys";
      const std::string expected =
          *screen == '\0' ? (valuesForKeys ? "FetchValuesForKeys: Unable to get current H5 VC"
                                           : "Unable to get current H5 Context")
                          : std::string(valuesForKeys ? "FetchValuesForKeys: " : "") +
                                "Unable to get current H5 Context Listeners";
      auto out = call(b.bridge, b.validData, screen);
      EXPECT_EQ(out.answers, Strings{flatError(expected)});
      EXPECT_TRUE(out.reported.empty());
      EXPECT_TRUE(out.hostCalls.empty());
    }
  }
}

TEST_F(HostBridges, BadArgumentsAreRefusedAndOnlyValuesForKeysLooksAtTheScreenFirst) {
  const char* kInvalid = "invalid parameter!";
  const char* kBadKeys = "FetchValuesForKeys: Invalid keys parameter!";
  const char* kBadKey = "FetchParamsAgainstKeyHandler: Invalid key parameter!";
  const struct {
    const char *bridge, *data, *screen, *message;
  } cases[] = {
      {"vantuOpenDeeplink", R"({"deeplink": 42})", "page", kInvalid},
      {"vantuNavigateTo", R"({"data": {"id": 1}})", "page", kInvalid},
      {"vantuNavigateTo", R"({"navigateTo": ["orders"]})", "bare", kInvalid},  // arguments before the screen
      {"vantuNavigateTo", R"({"navigateTo": "orders", "data": "id=1"})", "page", kInvalid},
      {"vantuNavigateTo", R"({"navigateTo": "orders", "clearBackStack": "true"})", "page", kInvalid},
      {"vantuNavigateTo", R"({"navigateTo": "orders", "finishThis": 1})", "", kInvalid},
      {"vantuFetchParamsAgainstKey", "{}", "page", kBadKey},
      {"vantuFetchParamsAgainstKey", R"({"key": true})", "", kBadKey},
      {"vantuFetchValuesForKeys", R"({"keys": "a"})", "page", kBadKeys},
      {"vantuFetchValuesForKeys", R"({"keys": ["a", 2]})", "page", kBadKeys},
      // Values for keys: the screen and its delegate come before "keys".
      {"vantuFetchValuesForKeys", "{}", "", "FetchValuesForKeys: Unable to get current H5 VC"},
      {"vantuFetchValuesForKeys", R"({"keys": 5})", "plainHolder",
       "FetchValuesForKeys: Unable to get current H5 Context Listeners"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.bridge) + " " + c.data + " from '" + c.screen + "'");
    auto out = call(c.bridge, c.data, c.screen);
    EXPECT_EQ(out.answers, Strings{flatError(c.message)});
    EXPECT_TRUE(out.hostCalls.empty());
    // Reported before the arguments are read, whenever there is someone to report to.
    EXPECT_EQ(out.reported, std::string_view(c.screen) == "page" ? Strings{c.bridge} : Strings{});
  }
}

TEST_F(HostBridges, EachBridgeAsksTheHostOnceAndAnswersInItsOwnShapeWhenItDoesOrWithAFixedMessageForFailure) {
  // Neither a failing host's error nor its value reaches the page.
  const char* hostAnswers[] = {
      R"({"success": false, "error": {"domain": "Host", "code": 9, "message": "service down"}, "value": "x"})",
      R"({"value": {"v": 1}, "after": 2})",
  };
  for (const char* hostAnswer : hostAnswers) {
    useHost(std::string(R"({"otherwise": )") + hostAnswer + "}");
    for (const auto& b : kFamily) {
      SCOPED_TRACE(std::string(b.bridge) + " answered " + hostAnswer);
      auto out = call(b.bridge, b.validData, "frame");  // the delegate sits on the grandparent
      // Session expiry reports as logout.
      EXPECT_EQ(out.reported, Strings{b.bridge == "vantuHandleSessionExpiry" ? "vantuLogout" : std::string(b.bridge)});
      EXPECT_EQ(out.hostCalls, Strings{R"({"delegate":"host","operation":)" + std::string(b.hostCall) + "}"});
      if (hostAnswer == hostAnswers[0]) {
        EXPECT_EQ(out.answers, Strings{flatError(b.hostFailed)});
        continue;
      }
      EXPECT_TRUE(out.answers.empty());
      EXPECT_TRUE(advance(1.5).answers.empty());
      EXPECT_EQ(advance(0.5).answers, b.answers);
    }
  }
}

TEST_F(HostBridges, OptionalNavigationArgumentsAndMissingLookupValues) {
  const struct {
    const char *bridge, *data, *hostAnswer;
    const char* hostCall;  // operation and arguments as the host received them
    Strings answers;
  } cases[] = {
      // Optional navigation arguments: missing or null means absent and false.
      {"vantuNavigateTo", R"({"navigateTo": "", "data": null, "clearBackStack": null, "finishThis": true})", "{}",
       R"("navigate","arguments":{"to":"","data":null,"clearBackStack":false,"finishThis":true})",
       {R"({"success":true,"data":null})"}},
      // The key lookups answer [] when the host gave no value (runner case 10 pins it for the values), but pass a
      // given null on.
      {"vantuFetchParamsAgainstKey", R"({"key": ""})", "{}", R"("fetchParamsAgainstKey","arguments":{"key":""})",
       {R"({"success":true,"data":[]})"}},
      {"vantuFetchValuesForKeys", R"({"keys": ["a"]})", R"({"value": null})",
       R"("fetchValuesForKeys","arguments":{"keys":["a"]})", {R"({"data":null})"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.bridge) + " " + c.data + " answered " + c.hostAnswer);
    auto out = callWithHost(c.bridge, c.data, c.hostAnswer);
    EXPECT_EQ(out.answers, c.answers);
    EXPECT_EQ(out.hostCalls, Strings{std::string(R"({"delegate":"host","operation":)") + c.hostCall + "}"});
  }
}

TEST_F(HostBridges, TheTokenRequestNamesTheCallingScreensAppOnlyAndAnswersADictionaryTwice) {
  const struct {
    const char *screen, *data, *sent;
  } callers[] = {
      // A page's own value is overwritten where it stands (runner case 10 pins a string)...
      {"frame", R"({"h5_uaid_caller": 7})", R"({"h5_uaid_caller":"mini.shop"})"},
      // ...or removed when no id is attached within two levels.
      {"anon", R"({"scope": "pay", "h5_uaid_caller": "mini.bank"})", R"({"scope":"pay"})"},
      {"l3", R"({"h5_uaid_caller": "mini.top"})", R"({})"},
  };
  for (const auto& c : callers) {
    SCOPED_TRACE(std::string(c.screen) + " " + c.data);
    auto out = call("vantuFetchAuthToken", c.data, c.screen);
    const std::string sent = R"({"delegate":"host","operation":"fetchAuthToken","arguments":{"data":)";
    EXPECT_EQ(out.hostCalls, Strings{sent + c.sent + "}}"});
    EXPECT_EQ(out.answers, Strings{R"({"success":true,"data":null})"});
  }
  // A dictionary token is answered first as it stands (runner case 10 pins the success), even before the failure;
  // anything else only wrapped.
  EXPECT_EQ(callWithHost("vantuFetchAuthToken", "{}", R"({"success": false, "value": {"token": "stale"}})").answers,
            (Strings{R"({"token":"stale"})", flatError("failed to fetch access token!")}));
  EXPECT_EQ(callWithHost("vantuFetchAuthToken", "{}", R"({"value": ["t3"]})").answers,
            Strings{R"({"success":true,"data":["t3"]})"});
}

/// A host in native code, which can use keys that no page can send; it records what it receives.
struct NativeHost : VantuH5Delegate {
  Value token;
  std::vector<Dict> received;
  void fetchAuthToken(Dict data, DelegateHandler handler) override { take(std::move(data), handler, token); }
  void login(Dict data, DelegateHandler handler) override { take(std::move(data), handler, std::nullopt); }
  void take(Dict data, const DelegateHandler& handler, std::optional<Value> value) {
    received.push_back(std::move(data));
    handler(true, std::nullopt, std::move(value));
  }
};

TEST_F(HostBridges, NonStringKeysPassThroughAndDoNotMakeATokenDictionary) {
  auto host = std::make_shared<NativeHost>();
  setVH5ViewControllerDelegate(*device.screen("bare"), host);
  const Dict data{{"z", 1}, {3, "three"}, {true, Array{1, "x"}}, {"h5_uaid_caller", "mine"}};
  EXPECT_EQ(call("vantuLogin", data, "bare").answers.size(), 1u);
  host->token = Dict{{"token", "t1"}, {7, "seven"}};
  EXPECT_EQ(call("vantuFetchAuthToken", data, "bare").answers,
            Strings{R"({"success":true,"data":{"token":"t1","7":"seven"}})"});
  ASSERT_EQ(host->received.size(), 2u);
  EXPECT_TRUE(host->received[0] == data) << json::write(host->received[0]);
  EXPECT_TRUE(host->received[1] == (Dict{{"z", 1}, {3, "three"}, {true, Array{1, "x"}}}))
      << json::write(host->received[1]);
}

// --- Over time and through the registry.

TEST_F(HostBridges, OnlyLoginAnswersNothingOnceItsHandlerIsGone) {
  // The answers with the handlers kept are pinned by the late-answer test above.
  useHost(R"({"otherwise": {"after": 1}})");
  for (const char* bridge : {"vantuLogin", "vantuLogout", "vantuHandleSessionExpiry"}) {
    SCOPED_TRACE(bridge);
    std::weak_ptr<H5BaseHandler> handler = registry.handlerFor(bridge);
    EXPECT_EQ(call(bridge, "{}", "page").hostCalls.size(), 1u);
    registry.releaseHandlers();
    EXPECT_TRUE(handler.expired());  // the pending host answer does not keep it alive
    EXPECT_EQ(advance(1).answers, bridge == std::string_view("vantuLogin") ? Strings{}
                                                                            : Strings{R"({"data":{"success":true}})"});
  }
}

}  // namespace
}  // namespace vantu::testing_support
