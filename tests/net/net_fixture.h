#pragma once
// Network bridges called from a screen "page" whose host delegate "host"
// records every call, and from a screen "bare" without one. Calls wait
// (in real time) for their transfers to come back.

#include <filesystem>
#include <string>

#include "tests/net/loopback_servers.h"
#include "tests/support/bridge_test_fixture.h"

namespace vantu::testing_support {

class NetFixture : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"delegates": {"host": {}},
              "screens": [{"name": "page", "delegate": "host", "uniqueAppIdentifier": "mini.net"}, {"name": "bare"}]})");
  }

  /// Calls `bridge` and waits until every transfer it started has reported.
  CallOutcome callAndWait(std::string_view bridge, const Dict& data, std::string_view screen = "page") {
    CallOutcome outcome = call(bridge, data, screen);
    EXPECT_TRUE(device.dispatch().settle(std::chrono::seconds(20)));
    CallOutcome later = collect();
    for (auto [all, more] : {std::pair{&outcome.answers, &later.answers}, {&outcome.reported, &later.reported},
                             {&outcome.hostCalls, &later.hostCalls}, {&outcome.effects, &later.effects}}) {
      all->insert(all->end(), more->begin(), more->end());
    }
    return outcome;
  }
  CallOutcome callAndWait(std::string_view bridge, std::string_view dataJson, std::string_view screen = "page") {
    return callAndWait(bridge, dataOf(dataJson), screen);
  }

  /// The one answer of `outcome`, parsed.
  static Dict answerOf(const CallOutcome& outcome) {
    EXPECT_EQ(outcome.answers.size(), 1u);
    if (outcome.answers.size() != 1) return {};
    auto parsed = json::parse(outcome.answers[0]);
    return parsed.ok() && parsed.value().isDict() ? *parsed.value().asDict() : Dict{};
  }

  std::filesystem::path downloads() const { return device.platformBundle()->documentsDirectory / "H5DOWNLOADS"; }

  LoopbackHttpServer server;
};

}  // namespace vantu::testing_support
