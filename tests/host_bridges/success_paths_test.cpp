// What the host-delegated bridges hand to the host and answer when it
// succeeds: each bridge's payload shape, navigate's optional arguments, the
// empty array for a missing value, the token request's caller key and its
// double answer.

#include <memory>

#include "tests/host_bridges/host_bridge_fixture.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/core/view_controller_context.h"

namespace vantu::testing_support {
namespace {

using HostBridgeSuccess = HostBridgeFixture;

TEST_F(HostBridgeSuccess, EachBridgePassesItsArgumentsAndAnswersInItsOwnShape) {
  struct Case {
    const char* bridge;
    const char* data;
    const char* hostAnswer;
    const char* hostCall;  // operation and arguments as the host received them
    Strings answers;
  };
  const Case cases[] = {
      {"vantuOpenDeeplink", R"({"deeplink": "app://orders/7", "x": 1})", R"({"value": "opened"})",
       R"("openDeeplink","arguments":{"deeplink":"app://orders/7"})", {R"({"data":{"success":true}})"}},
      {"vantuNavigateTo", R"({"navigateTo": "orders", "data": {"id": 7}, "clearBackStack": true, "finishThis": false})",
       R"({"value": {"opened": "orders"}})",
       R"("navigate","arguments":{"to":"orders","data":{"id":7},"clearBackStack":true,"finishThis":false})",
       {R"({"success":true,"data":{"opened":"orders"}})"}},
      // Optional navigation arguments: missing or null means absent and false.
      {"vantuNavigateTo", R"({"navigateTo": "", "data": null, "clearBackStack": null, "finishThis": true})", "{}",
       R"("navigate","arguments":{"to":"","data":null,"clearBackStack":false,"finishThis":true})",
       {R"({"success":true,"data":null})"}},
      {"vantuLogin", R"({"b": 1, "a": [true, null], "h5_uaid_caller": "kept"})", R"({"value": "hi"})",
       R"("login","arguments":{"data":{"b":1,"a":[true,null],"h5_uaid_caller":"kept"}})",
       {R"({"data":{"success":true}})"}},
      {"vantuHandleSessionExpiry", R"({"code": 401})", "{}", R"("handleSessionExpiry","arguments":{"data":{"code":401}})",
       {R"({"data":{"success":true}})"}},
      {"vantuFetchAuthToken", R"({"scope": "pay"})", R"({"value": "tok-1"})",
       R"("fetchAuthToken","arguments":{"data":{"scope":"pay","h5_uaid_caller":"mini.shop"}})",
       {R"({"success":true,"data":"tok-1"})"}},
      // The customer id is answered as it is, unwrapped.
      {"vantuFetchCustomerId", R"({"x": 1})", R"({"value": "c-42"})", R"("getCustomerId","arguments":{})", {R"("c-42")"}},
      {"vantuFetchCustomerId", "{}", "{}", R"("getCustomerId","arguments":{})", {"null"}},
      {"vantuFetchValuesForKeys", R"({"keys": ["a", "b"]})", R"({"value": {"a": 1}})",
       R"("fetchValuesForKeys","arguments":{"keys":["a","b"]})", {R"({"data":{"a":1}})"}},
      {"vantuFetchParamsAgainstKey", R"({"key": "promo"})", R"({"value": {"code": "X"}})",
       R"("fetchParamsAgainstKey","arguments":{"key":"promo"})", {R"({"success":true,"data":{"code":"X"}})"}},
      // The key lookups answer [] when the host gave no value, but pass a given null on.
      {"vantuFetchValuesForKeys", R"({"keys": []})", "{}", R"("fetchValuesForKeys","arguments":{"keys":[]})",
       {R"({"data":[]})"}},
      {"vantuFetchParamsAgainstKey", R"({"key": ""})", "{}", R"("fetchParamsAgainstKey","arguments":{"key":""})",
       {R"({"success":true,"data":[]})"}},
      {"vantuFetchValuesForKeys", R"({"keys": ["a"]})", R"({"value": null})",
       R"("fetchValuesForKeys","arguments":{"keys":["a"]})", {R"({"data":null})"}},
      {"vantuAnalyticsTracking", R"({"event": "open", "n": 1})", R"({"value": "seen"})",
       R"("trackCustomEventFor","arguments":{"variables":{"event":"open","n":1}})", {R"({"success":true,"data":"seen"})"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.bridge) + " " + c.data + " answered " + c.hostAnswer);
    useHost(std::string(R"({"otherwise": )") + c.hostAnswer + "}");
    auto out = call(c.bridge, c.data, "page");
    EXPECT_EQ(out.answers, c.answers);
    EXPECT_EQ(out.hostCalls, Strings{std::string(R"({"delegate":"host","operation":)") + c.hostCall + "}"});
  }
}

TEST_F(HostBridgeSuccess, TheTokenRequestNamesTheCallingScreensAppOnly) {
  struct Case {
    const char* screen;
    const char* data;
    const char* sent;
  };
  const Case cases[] = {
      // A page's own value is overwritten where it stands...
      {"page", R"({"h5_uaid_caller": "mini.bank", "scope": "pay"})", R"({"h5_uaid_caller":"mini.shop","scope":"pay"})"},
      {"frame", R"({"h5_uaid_caller": 7})", R"({"h5_uaid_caller":"mini.shop"})"},
      // ...or removed when no id is attached within two levels.
      {"anon", R"({"scope": "pay", "h5_uaid_caller": "mini.bank"})", R"({"scope":"pay"})"},
      {"l3", R"({"h5_uaid_caller": "mini.top"})", R"({})"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.screen) + " " + c.data);
    auto out = call("vantuFetchAuthToken", c.data, c.screen);
    EXPECT_EQ(out.hostCalls,
              Strings{std::string(R"({"delegate":"host","operation":"fetchAuthToken","arguments":{"data":)") + c.sent + "}}"});
    EXPECT_EQ(out.answers, Strings{R"({"success":true,"data":null})"});
  }
}

TEST_F(HostBridgeSuccess, ATokenDictionaryIsAnsweredFirstAsItStands) {
  const std::string failed = flatError("failed to fetch access token!");
  struct Case {
    const char* hostAnswer;
    Strings answers;
  };
  const Case cases[] = {
      {R"({"value": {"token": "t1", "ttl": 60}})",
       {R"({"token":"t1","ttl":60})", R"({"success":true,"data":{"token":"t1","ttl":60}})"}},
      {R"({"value": {}})", {"{}", R"({"success":true,"data":{}})"}},
      {R"({"success": false, "value": {"token": "stale"}})", {R"({"token":"stale"})", failed}},
      {R"({"value": ["t3"]})", {R"({"success":true,"data":["t3"]})"}},
      {R"({"success": false})", {failed}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.hostAnswer);
    useHost(std::string(R"({"answers": {"fetchAuthToken": )") + c.hostAnswer + "}}");
    EXPECT_EQ(call("vantuFetchAuthToken", "{}", "page").answers, c.answers);
  }
}

/// A host in native code, which can use keys that no page can send.
class NativeHost : public VantuH5Delegate {
 public:
  Value token;
  std::vector<Dict> received;
  void fetchAuthToken(Dict data, DelegateHandler handler) override { answer(std::move(data), handler, token); }
  void login(Dict data, DelegateHandler handler) override { answer(std::move(data), handler, std::nullopt); }
  void trackCustomEventFor(Dict variables, DelegateHandler handler) override {
    if (variables.getString("event_action") == "Bridge Analytics") return handler(true, std::nullopt, std::nullopt);
    answer(std::move(variables), handler, std::nullopt);
  }

 private:
  void answer(Dict data, const DelegateHandler& handler, std::optional<Value> value) {
    received.push_back(std::move(data));
    handler(true, std::nullopt, std::move(value));
  }
};

TEST_F(HostBridgeSuccess, NonStringKeysPassThroughAndDoNotMakeATokenDictionary) {
  auto host = std::make_shared<NativeHost>();
  setVH5ViewControllerDelegate(*device.screen("bare"), host);
  const Dict data{{"z", 1}, {3, "three"}, {true, Array{1, "x"}}, {"h5_uaid_caller", "mine"}};
  for (const char* bridge : {"vantuLogin", "vantuAnalyticsTracking"}) {
    SCOPED_TRACE(bridge);
    host->received.clear();
    EXPECT_EQ(call(bridge, data, "bare").answers.size(), 1u);
    ASSERT_EQ(host->received.size(), 1u);
    EXPECT_TRUE(host->received[0] == data) << json::write(host->received[0]);
  }
  host->received.clear();
  host->token = Dict{{"token", "t1"}, {7, "seven"}};
  EXPECT_EQ(call("vantuFetchAuthToken", data, "bare").answers,
            Strings{R"({"success":true,"data":{"token":"t1","7":"seven"}})"});
  ASSERT_EQ(host->received.size(), 1u);
  EXPECT_TRUE(host->received[0] == (Dict{{"z", 1}, {3, "three"}, {true, Array{1, "x"}}}))
      << json::write(host->received[0]);
}

}  // namespace
}  // namespace vantu::testing_support
