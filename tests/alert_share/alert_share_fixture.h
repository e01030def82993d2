#pragma once
// The alert and share bridges are called through the registry from the
// screens of one simulated app:
//
//   shell (delegate "host", id "mini.shop") > page
//   bare          nothing attached
//   nav (navigation) > navPage (delegate "host")

#include <memory>
#include <string>
#include <string_view>

#include "tests/support/bridge_test_fixture.h"

namespace vantu::testing_support {

using Outcome = CallOutcome;
inline const std::string kSuccessFlag = R"({"data":{"success":true}})";

class AlertShareFixture : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"delegates": {"host": {}},
      "screens": [
        {"name": "shell", "delegate": "host", "uniqueAppIdentifier": "mini.shop", "children": [{"name": "page"}]},
        {"name": "bare"},
        {"name": "nav", "kind": "navigation", "children": [{"name": "navPage", "delegate": "host"}]}
      ]})");
    device.takeDelegateCalls();
  }

  /// What `screen` presents, as type T (nullptr when nothing or another kind).
  template <class T>
  std::shared_ptr<T> presentedOn(std::string_view screen) {
    auto vc = device.screen(screen);
    return vc ? std::dynamic_pointer_cast<T>(vc->presentedViewController()) : nullptr;
  }
};

}  // namespace vantu::testing_support
