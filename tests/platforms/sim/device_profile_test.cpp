// A device profile's "delegates" and "environment": the host delegate they
// script for `vantu-h5 run`, and the profiles they refuse.

#include <gtest/gtest.h>

#include "platforms/sim/device_profile.h"
#include "platforms/sim/sim_device.h"
#include "vantu/runtime/shared_state.h"
#include "vantu/value/json.h"

namespace vantu::sim {
namespace {

Value parse(const std::string& text) {
  auto parsed = json::parse(text);
  EXPECT_TRUE(parsed.ok()) << text;
  return parsed.ok() ? parsed.value() : Value();
}

TEST(DeviceProfileDelegates, TheNamedDelegateAnswersAsScriptedAndReportsItsCalls) {
  resetSharedStateForTesting();  // no environment delegate to forward to
  SimDevice device;
  device.install();
  auto loaded = DeviceProfile::load(parse(R"({
    "delegates": {"host": {"answers": {"getCustomerId": {"success": true, "value": "c-7"},
                                       "login": {"success": true, "after": 2}},
                           "otherwise": "default"},
                  "spare": {}},
    "environment": {"delegate": "host"}})"),
                                    *device.platformBundle());
  ASSERT_TRUE(std::holds_alternative<DeviceProfile>(loaded)) << std::get<std::string>(loaded);
  const auto& profile = std::get<DeviceProfile>(loaded);
  ASSERT_TRUE(profile.hostDelegate());
  EXPECT_EQ(profile.hostDelegate()->name(), "host");
  std::vector<std::string> recorded;
  profile.onDelegateCall([&](std::string_view delegate, std::string_view operation, Dict arguments) {
    recorded.push_back(std::string(delegate) + "." + std::string(operation) + " " + json::write(Value(arguments)));
  });

  std::vector<std::string> answers;
  auto note = [&](bool success, std::optional<PlatformError> error, std::optional<Value> value) {
    answers.push_back(std::to_string(success) + (error ? " " + error->localizedFailureReason.value_or("") : std::string()) +
                      (value ? " " + json::write(*value) : ""));
  };
  profile.hostDelegate()->getCustomerId(note);
  profile.hostDelegate()->login(Dict{{"reason", "try"}}, note);
  EXPECT_EQ(answers.size(), 1u) << "login answers two seconds later";
  device.dispatch().advance(std::chrono::seconds(2));
  profile.hostDelegate()->logout(Dict{}, note);  // left to the default: fails, unrecorded

  ASSERT_EQ(answers.size(), 3u);
  EXPECT_EQ(answers[0], "1 \"c-7\"");
  EXPECT_EQ(answers[1], "1");
  EXPECT_EQ(answers[2], "0 Running default implementation of the method: logout(data:handler:)");
  EXPECT_EQ(recorded, (std::vector<std::string>{"host.getCustomerId {}", R"(host.login {"data":{"reason":"try"}})"}));
}

TEST(DeviceProfileDelegates, MalformedSectionsAreRefusedWithTheFieldAtFault) {
  SimDevice device;
  device.install();
  const std::pair<const char*, const char*> cases[] = {
      {R"({"delegates": []})", "delegates: must be an object of named delegates"},
      {R"({"delegates": {"host": {"kind": "object"}}})",
       "delegates: \"host\": a profile holds delegates only (kind \"delegate\")"},
      {R"({"delegates": {"host": {"answers": {"teleport": {}}}}})",
       "delegates: \"host\": unknown delegate operation \"teleport\""},
      {R"({"delegates": {"host": {"colour": 1}}})", "delegates: \"host\": unknown field \"colour\""},
      {R"({"environment": {"delegate": "host"}})", "environment: no delegate named \"host\""},
      {R"({"delegates": {"host": {}}, "environment": {"viewControllerProvider": null}})",
       "environment: unknown field \"viewControllerProvider\" (a profile's environment names a \"delegate\")"},
      {R"({"environment": 3})", "environment: must be an object or null"},
  };
  for (const auto& [profile, reason] : cases) {
    auto loaded = DeviceProfile::load(parse(profile), *device.platformBundle());
    ASSERT_TRUE(std::holds_alternative<std::string>(loaded)) << profile;
    EXPECT_EQ(std::get<std::string>(loaded), reason) << profile;
  }
}

}  // namespace
}  // namespace vantu::sim
