#pragma once
// One simulated container app for the bar, strip and push-window tests:
//
//   nav (navigation, bar 44 points) > shop (id "shop.mini", web view
//   "shop.web" as a direct subview) > shop.frame
//   loose (id "loose.app", web view, no navigation controller)
//   orphan (no id) inside nav2 (navigation)
//   bare (nothing attached, no navigation controller)
//
// The environment's view-controller provider makes a screen per request.
// The phone: 390 x 844 screen, 47-point status bar, safe area 47 / 34.

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/core/sim_fixture.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/value/json.h"

namespace vantu::testing_support {

class ContainerFixture : public SimFixture {
 protected:
  void SetUp() override {
    SimFixture::SetUp();
    registerAllBridges(registry);
    apply(R"({"environment": {"viewControllerProvider": {"returns": "screen"}},
      "screens": [
        {"name": "nav", "kind": "navigation", "navigationBar": {"hidden": false, "height": 44},
         "children": [
           {"name": "shop", "uniqueAppIdentifier": "shop.mini", "isH5": true,
            "view": {"frame": [0, 0, 390, 844], "subviews": [{"kind": "webView", "name": "shop.web"}]},
            "children": [{"name": "shop.frame"}]}]},
        {"name": "loose", "uniqueAppIdentifier": "loose.app",
         "view": {"subviews": [{"kind": "webView", "name": "loose.web"}]}},
        {"name": "nav2", "kind": "navigation", "children": [{"name": "orphan"}]},
        {"name": "bare"}
      ]})");
  }

  /// Calls `bridge` from `screen` ("" for none) with `dataJson`; returns
  /// every answer as JSON text.
  std::vector<std::string> call(std::string_view bridge, std::string_view dataJson, std::string_view screen) {
    auto parsed = json::parse(dataJson);
    EXPECT_TRUE(parsed.ok() && parsed.value().isDict()) << dataJson;
    Dict data = parsed.ok() && parsed.value().isDict() ? *parsed.value().asDict() : Dict{};
    std::shared_ptr<ViewController> from = screen.empty() ? nullptr : device.screen(screen);
    EXPECT_TRUE(screen.empty() || from) << "no screen " << screen;
    std::vector<std::string> answers;
    registry.dispatch(bridge, H5HandlerInputParams(std::move(from), std::move(data), [&answers](const Value& answer) {
                        answers.push_back(json::write(answer));
                      }));
    device.dispatch().runReady();
    return answers;
  }

  static std::string flatError(std::string_view message) {
    return R"({"error":2,"message":")" + std::string(message) + R"("})";
  }

  std::shared_ptr<View> view(std::string_view name) {
    auto found = device.findView(name);
    EXPECT_TRUE(found) << "no view " << name;
    return found;
  }

  BridgeRegistry registry;
};

}  // namespace vantu::testing_support
