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

#include <string_view>

#include "tests/support/bridge_test_fixture.h"

namespace vantu::testing_support {

class ContainerFixture : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
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
};

}  // namespace vantu::testing_support
