// How the host-delegated bridges fail: no calling screen, no host delegate
// within reach, bad arguments (and which check comes first), and a host that
// answers failure. Every failure is one flat error with code 2.

#include "tests/host_bridges/host_bridge_fixture.h"

namespace vantu::testing_support {
namespace {

using HostBridgeFailures = HostBridgeFixture;

TEST_F(HostBridgeFailures, WithoutAScreenOrADelegateWithinReachTheHostIsNotAsked) {
  struct Screen {
    const char* name;  // "" for a call without a screen
    bool hasScreen;
  };
  const Screen screens[] = {
      {"", false},
      {"bare", true},         // nothing attached, though the environment has a delegate
      {"plainHolder", true},  // the attached object is not a host delegate
      {"far3", true},         // the only delegate is three levels up
  };
  for (const auto& screen : screens) {
    for (const auto& b : kFamily) {
      SCOPED_TRACE(std::string(b.bridge) + " from '" + screen.name + "'");
      auto out = call(b.bridge, b.validData, screen.name);
      EXPECT_EQ(out.answers, Strings{flatError(screen.hasScreen ? b.noDelegate : b.noViewController)});
      EXPECT_TRUE(out.reported.empty());
      EXPECT_TRUE(out.hostCalls.empty());
    }
  }
}

TEST_F(HostBridgeFailures, BadArgumentsAreRefusedAndOnlyValuesForKeysLooksAtTheScreenFirst) {
  struct Case {
    const char* bridge;
    const char* data;
    const char* screen;
    const char* message;
  };
  const char* kInvalid = "invalid parameter!";
  const char* kBadKeys = "FetchValuesForKeys: Invalid keys parameter!";
  const char* kBadKey = "FetchParamsAgainstKeyHandler: Invalid key parameter!";
  const Case cases[] = {
      {"vantuOpenDeeplink", "{}", "page", kInvalid},
      {"vantuOpenDeeplink", R"({"deeplink": 42})", "page", kInvalid},
      {"vantuOpenDeeplink", R"({"deeplink": null})", "", kInvalid},  // arguments before the screen
      {"vantuNavigateTo", R"({"data": {"id": 1}})", "page", kInvalid},
      {"vantuNavigateTo", R"({"navigateTo": ["orders"]})", "bare", kInvalid},
      {"vantuNavigateTo", R"({"navigateTo": "orders", "data": "id=1"})", "page", kInvalid},
      {"vantuNavigateTo", R"({"navigateTo": "orders", "clearBackStack": "true"})", "page", kInvalid},
      {"vantuNavigateTo", R"({"navigateTo": "orders", "finishThis": 1})", "", kInvalid},
      {"vantuFetchParamsAgainstKey", "{}", "page", kBadKey},
      {"vantuFetchParamsAgainstKey", R"({"key": true})", "", kBadKey},
      {"vantuFetchParamsAgainstKey", R"({"key": 3})", "plainHolder", kBadKey},
      {"vantuFetchValuesForKeys", "{}", "page", kBadKeys},
      {"vantuFetchValuesForKeys", R"({"keys": "a"})", "page", kBadKeys},
      {"vantuFetchValuesForKeys", R"({"keys": ["a", 2]})", "page", kBadKeys},
      // Values for keys: the screen and its delegate come before "keys".
      {"vantuFetchValuesForKeys", "{}", "", "FetchValuesForKeys: Unable to get current H5 VC"},
      {"vantuFetchValuesForKeys", "{}", "bare", "FetchValuesForKeys: Unable to get current H5 Context Listeners"},
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

TEST_F(HostBridgeFailures, AHostFailureBecomesTheBridgesFixedMessage) {
  // Neither the host's error nor its value reaches the page.
  const char* hostAnswers[] = {
      R"({"success": false, "error": {"domain": "Host", "code": 9, "message": "service down"}, "value": "x"})",
      R"({"success": false, "value": [1, 2]})",
  };
  for (const char* hostAnswer : hostAnswers) {
    useHost(std::string(R"({"otherwise": )") + hostAnswer + "}");
    for (const auto& b : kFamily) {
      SCOPED_TRACE(std::string(b.bridge) + " answered " + hostAnswer);
      auto out = call(b.bridge, b.validData, "frame");  // the delegate sits on the grandparent
      EXPECT_EQ(out.answers, Strings{flatError(b.hostFailed)});
      EXPECT_EQ(out.reported, Strings{std::string(b.reportedAs)});
      ASSERT_EQ(out.hostCalls.size(), 1u);
      EXPECT_NE(out.hostCalls[0].find(R"("delegate":"host","operation":")" + std::string(b.operation) + "\""),
                std::string::npos);
    }
  }
}

}  // namespace
}  // namespace vantu::testing_support
