#pragma once
// The device-capability bridges are called from one plain screen, "page".

#include <memory>
#include <string>
#include <string_view>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/platform/alert_controller.h"

namespace vantu::testing_support {

class DeviceFixture : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"screens": [{"name": "page"}]})");
  }

  std::shared_ptr<AlertController> shownAlert() {
    return std::dynamic_pointer_cast<AlertController>(device.screen("page")->presentedViewController());
  }

  /// Taps the alert's button titled `title`; fails the test when there is none.
  void tap(std::string_view title) {
    auto alert = shownAlert();
    ASSERT_NE(alert, nullptr);
    for (std::size_t i = 0; i < alert->actions().size(); ++i) {
      if (alert->actions()[i].title() == title) {
        ASSERT_TRUE(alert->tapAction(i));
        return;
      }
    }
    FAIL() << "no button " << title;
  }
};

}  // namespace vantu::testing_support
