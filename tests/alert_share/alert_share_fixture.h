#pragma once
// The alert and share bridges are called through the registry from the
// screens of one simulated app:
//
//   shell (delegate "host", id "mini.shop") > page
//   bare          nothing attached
//   nav (navigation) > navPage (delegate "host")

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/core/sim_fixture.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/runtime/bridge_registry.h"

namespace vantu::testing_support {

using Strings = std::vector<std::string>;

/// {"error":2,"message":"<message>"} as JSON text.
inline std::string flatError(std::string_view message) { return json::write(payload::flatError(2, message)); }
inline const std::string kSuccessFlag = R"({"data":{"success":true}})";

/// What a call (or a user action) produced.
struct Outcome {
  Strings answers;   // as JSON text, in order
  Strings reported;  // labels of the "Bridge Analytics" events
  Strings effects;   // UI effects, as JSON text
};

class AlertShareFixture : public SimFixture {
 protected:
  void SetUp() override {
    SimFixture::SetUp();
    registerAllBridges(registry);
    apply(R"({"delegates": {"host": {}},
      "screens": [
        {"name": "shell", "delegate": "host", "uniqueAppIdentifier": "mini.shop", "children": [{"name": "page"}]},
        {"name": "bare"},
        {"name": "nav", "kind": "navigation", "children": [{"name": "navPage", "delegate": "host"}]}
      ]})");
    device.takeDelegateCalls();
  }

  /// Calls `bridge` from `screen` ("" for none) and runs what is due now.
  Outcome call(std::string_view bridge, std::string_view dataJson, std::string_view screen = "page") {
    auto parsed = json::parse(dataJson);
    EXPECT_TRUE(parsed.ok() && parsed.value().isDict()) << dataJson;
    const Dict* data = parsed.ok() ? parsed.value().asDict() : nullptr;
    return call(bridge, data ? *data : Dict{}, screen);
  }

  Outcome call(std::string_view bridge, Dict data, std::string_view screen = "page") {
    std::shared_ptr<ViewController> from;
    if (!screen.empty()) {
      from = device.screen(screen);
      EXPECT_NE(from, nullptr) << "no screen " << screen;
    }
    registry.dispatch(bridge, H5HandlerInputParams(std::move(from), std::move(data), [this](const Value& answer) {
                        answers_.push_back(json::write(answer));
                      }));
    device.dispatch().runReady();
    return collect();
  }

  /// What happened since the last call (after a tap, say).
  Outcome collect() {
    Outcome outcome;
    outcome.answers = std::exchange(answers_, {});
    for (const Dict& c : device.takeDelegateCalls()) {
      auto variables = c.getDict("arguments").value_or(Dict{}).getDict("variables");
      if (variables && variables->getString("event_action") == "Bridge Analytics") {
        outcome.reported.push_back(variables->getString("event_label").value_or("?"));
      }
    }
    for (const Dict& effect : device.effects()->take()) outcome.effects.push_back(json::write(effect));
    return outcome;
  }

  /// What `screen` presents, as type T (nullptr when nothing or another kind).
  template <class T>
  std::shared_ptr<T> presentedOn(std::string_view screen) {
    auto vc = device.screen(screen);
    return vc ? std::dynamic_pointer_cast<T>(vc->presentedViewController()) : nullptr;
  }

  BridgeRegistry registry;

 private:
  Strings answers_;
};

}  // namespace vantu::testing_support
