#pragma once
// The common ground of the tests that run on the simulated device: a freshly
// installed device, scenarios given as JSON text, and bridge calls through a
// registry holding every bridge, with the answers, analytics reports, other
// delegate calls and UI effects collected per call.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platforms/sim/sim_device.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/platform/dispatch.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/runtime/shared_state.h"
#include "vantu/value/json.h"

namespace vantu::testing_support {

using Strings = std::vector<std::string>;

/// {"error":2,"message":"<message>"} as JSON text.
inline std::string flatError(std::string_view message) {
  std::string text = R"({"error":2,"message":)";
  json::writeString(text, message);
  return text + "}";
}

/// What a call (or a user action, or a stretch of virtual time) produced.
struct CallOutcome {
  Strings answers;    // as JSON text, in order
  Strings reported;   // labels of the "Bridge Analytics" events
  Strings hostCalls;  // every other scripted delegate call, as JSON text
  Strings effects;    // UI effects, as JSON text
};

class BridgeTestFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    device.install();
    registerAllBridges(registry);
  }
  void TearDown() override { resetSharedStateForTesting(); }

  /// Applies a scenario written as JSON text; fails the test when it is rejected.
  void apply(std::string_view scenarioJson) {
    auto parsed = json::parse(scenarioJson);
    ASSERT_TRUE(parsed.ok()) << parsed.error().message;
    auto error = device.apply(parsed.value());
    ASSERT_FALSE(error.has_value()) << *error;
  }

  /// Runs what is due now on the main queue.
  void settle() { device.dispatch().runReady(); }

  static Dict dataOf(std::string_view dataJson) {
    auto parsed = json::parse(dataJson);
    EXPECT_TRUE(parsed.ok() && parsed.value().isDict()) << dataJson;
    return parsed.ok() && parsed.value().isDict() ? *parsed.value().asDict() : Dict{};
  }

  /// Calls `bridge` from `screen` ("" for none), runs what is due now and
  /// returns the answers only; delegate calls and effects stay recorded.
  Strings send(std::string_view bridge, Dict data, std::string_view screen) {
    std::shared_ptr<ViewController> from;
    if (!screen.empty()) {
      from = device.screen(screen);
      EXPECT_NE(from, nullptr) << "no screen " << screen;
    }
    registry.dispatch(bridge, H5HandlerInputParams(std::move(from), std::move(data), [this](const Value& answer) {
                        answers_.push_back(json::write(answer));
                      }));
    settle();
    return std::exchange(answers_, {});
  }
  Strings send(std::string_view bridge, std::string_view dataJson, std::string_view screen) {
    return send(bridge, dataOf(dataJson), screen);
  }

  /// Like send() and also takes everything else the call produced.
  CallOutcome call(std::string_view bridge, Dict data, std::string_view screen = "page") {
    answers_ = send(bridge, std::move(data), screen);
    return collect();
  }
  CallOutcome call(std::string_view bridge, std::string_view dataJson, std::string_view screen = "page") {
    return call(bridge, dataOf(dataJson), screen);
  }

  /// Moves virtual time forward and reports what happened meanwhile.
  CallOutcome advance(double seconds) {
    device.dispatch().advance(secondsToDuration(seconds));
    settle();
    return collect();
  }

  /// What happened since the last call (after a tap, say).
  CallOutcome collect() {
    CallOutcome outcome;
    outcome.answers = std::exchange(answers_, {});
    for (const Dict& c : device.takeDelegateCalls()) {
      auto variables = c.getDict("arguments").value_or(Dict{}).getDict("variables");
      if (c.getString("operation") == "trackCustomEventFor" && variables &&
          variables->getString("event_action") == "Bridge Analytics") {
        outcome.reported.push_back(variables->getString("event_label").value_or("?"));
      } else {
        outcome.hostCalls.push_back(json::write(c));
      }
    }
    for (const Dict& effect : device.effects()->take()) outcome.effects.push_back(json::write(effect));
    return outcome;
  }

  /// The view named `name`; fails the test when there is none.
  std::shared_ptr<View> view(std::string_view name) {
    auto found = device.findView(name);
    EXPECT_TRUE(found) << "no view " << name;
    return found;
  }

  sim::SimDevice device;
  BridgeRegistry registry;

 private:
  Strings answers_;
};

}  // namespace vantu::testing_support
