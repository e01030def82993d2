// Host-delegated bridges over time and through the registry: answers that
// come later, the login bridge answering nothing once its handler is gone,
// and operations a screen's delegate leaves to the protocol default. That
// session expiry reports as logout is pinned by the failure-path test.

#include <memory>

#include "tests/host_bridges/host_bridge_fixture.h"

namespace vantu::testing_support {
namespace {

using HostBridgeLifecycle = HostBridgeFixture;

TEST_F(HostBridgeLifecycle, AnswersArriveWhenTheHostAnswers) {
  useHost(R"({"otherwise": {"value": "later", "after": 2}})");
  for (const auto& b : kFamily) {
    SCOPED_TRACE(b.bridge);
    auto now = call(b.bridge, b.validData, "page");
    EXPECT_TRUE(now.answers.empty());
    EXPECT_EQ(now.hostCalls.size(), 1u);
    EXPECT_TRUE(advance(1.5).answers.empty());
    EXPECT_EQ(advance(0.5).answers.size(), 1u);
  }
}

TEST_F(HostBridgeLifecycle, OnlyLoginAnswersNothingOnceItsHandlerIsGone) {
  struct Case {
    const char* bridge;
    bool released;
    Strings answers;
  };
  const Case cases[] = {
      {"vantuLogin", false, {R"({"data":{"success":true}})"}},
      {"vantuLogin", true, {}},
      {"vantuLogout", true, {R"({"data":{"success":true}})"}},
      {"vantuHandleSessionExpiry", true, {R"({"data":{"success":true}})"}},
  };
  useHost(R"({"otherwise": {"after": 1}})");
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.bridge) + (c.released ? " released" : " kept"));
    std::weak_ptr<H5BaseHandler> handler = registry.handlerFor(c.bridge);
    EXPECT_EQ(call(c.bridge, "{}", "page").hostCalls.size(), 1u);
    if (c.released) {
      registry.releaseHandlers();
      EXPECT_TRUE(handler.expired());  // the pending host answer does not keep it alive
    }
    EXPECT_EQ(advance(1).answers, c.answers);
  }
}

TEST_F(HostBridgeLifecycle, ALightScreenDelegateLeavesTheRestToTheEnvironmentsDelegate) {
  struct Case {
    const char* bridge;
    const char* data;
    const char* environment;
    Strings answers;
    Strings hostCalls;
  };
  const Case cases[] = {
      {"vantuLogin", R"({"u": 1})", R"({"delegate": "envHost"})", {R"({"data":{"success":true}})"},
       {R"({"delegate":"envHost","operation":"login","arguments":{"data":{"u":1}}})"}},
      {"vantuFetchAuthToken", "{}", R"({"delegate": "envHost"})", {R"({"success":true,"data":null})"},
       {R"({"delegate":"envHost","operation":"fetchAuthToken","arguments":{"data":{"h5_uaid_caller":"mini.light"}}})"}},
      {"vantuOpenDeeplink", R"({"deeplink": "app://x"})", "null", {flatError("Failed Navigation result!")}, {}},
      // The two value lookups never forward, even to a full environment delegate.
      {"vantuFetchValuesForKeys", R"({"keys": ["a"]})", R"({"delegate": "envHost"})",
       {flatError("FetchValuesForKeys: Failed to get values for keys!")}, {}},
      {"vantuFetchParamsAgainstKey", R"({"key": "a"})", R"({"delegate": "envHost"})",
       {flatError("FetchParamsAgainstKeyHandler: Failed to get data!")}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.bridge) + " with environment " + c.environment);
    useHost("{}", R"({"answers": {"trackCustomEventFor": {}}, "otherwise": "default"})", c.environment);
    auto out = call(c.bridge, c.data, "light");
    EXPECT_EQ(out.answers, c.answers);
    EXPECT_EQ(out.hostCalls, c.hostCalls);
    EXPECT_EQ(out.reported, Strings{c.bridge});
  }
}

}  // namespace
}  // namespace vantu::testing_support
