#pragma once
// Every core test runs on a freshly installed simulated device.

#include <gtest/gtest.h>

#include <string_view>

#include "platforms/sim/sim_device.h"
#include "vantu/runtime/shared_state.h"
#include "vantu/value/json.h"

namespace vantu::testing_support {

class SimFixture : public ::testing::Test {
 protected:
  void SetUp() override { device.install(); }
  void TearDown() override { resetSharedStateForTesting(); }

  /// Applies a scenario written as JSON text; fails the test when it is rejected.
  void apply(std::string_view scenarioJson) {
    auto parsed = json::parse(scenarioJson);
    ASSERT_TRUE(parsed.ok()) << parsed.error().message;
    auto error = device.apply(parsed.value());
    ASSERT_FALSE(error.has_value()) << *error;
  }

  sim::SimDevice device;
};

}  // namespace vantu::testing_support
