// The device and app info bridges on the simulated device: answers over a
// range of devices and networks, the app-info shapes, the "device" section.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/value/json.h"

namespace vantu {
namespace {

// Runner case 11 pins another device, a missing locale, 5G and a host that
// refuses app info end to end.
class DeviceInfoBridgesTest : public testing_support::BridgeTestFixture {
 protected:
  std::vector<std::string> call(std::string_view bridge, std::string_view screen = "") {
    return send(bridge, Dict{}, screen);
  }
  std::string callOnce(std::string_view bridge, std::string_view screen = "") {
    auto answers = call(bridge, screen);
    EXPECT_EQ(answers.size(), 1u) << bridge;
    return answers.empty() ? "" : answers.front();
  }
};

using Lines = std::vector<std::string>;

std::string cellular(const std::string& technologyJson) {
  return R"({"flags": ["reachable", "isWWAN"], "radioAccessTechnology": )" + technologyJson + "}";
}

TEST_F(DeviceInfoBridgesTest, NetworkTypeForEachNetwork) {
  struct Case {
    const char* name;
    std::string network, expected;
  };
  // The finer connection rules are in reachability_test; runner case 11 pins 3G, an unknown technology, no
  // connection and unavailable reachability.
  const Case cases[] = {
      {"Wi-Fi whatever the radio says", "{}", "Wifi"},
      {"LTE, flags as a number", R"({"flags": 262146, "radioAccessTechnology": "CTRadioAccessTechnologyLTE"})", "4G"},
      {"GPRS", cellular(R"("CTRadioAccessTechnologyGPRS")"), "2G"},
      {"eHRPD", cellular(R"("CTRadioAccessTechnologyeHRPD")"), "3G"},
      {"a known name with a trailing blank", cellular(R"("CTRadioAccessTechnologyLTE ")"),
       R"(Unknown Technology: "CTRadioAccessTechnologyLTE ")"},
      {"cellular, no technology", cellular("null"), "Unknown"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    // Each case starts from the default network.
    apply(R"({"device": {"network": {"flags": ["reachable"],
              "radioAccessTechnology": "CTRadioAccessTechnologyLTE"}}})");
    apply(R"({"device": {"network": )" + c.network + "}}");
    EXPECT_EQ(callOnce("vantuNetworkType"), R"({"data":)" + json::write(Value(c.expected)) + "}");
    // Each reading starts and drops a monitor of its own: nothing keeps watching, nothing is posted afterwards.
    EXPECT_EQ(device.reachability().watchingHandles(), 0u);
    EXPECT_TRUE(device.notifications().takePosted().empty());
  }
}

// Runner case 11 pins the device data line, the IMEI and a missing locale; runner case 02 the manufacturer.
TEST_F(DeviceInfoBridgesTest, DeviceFactsOfTheDefaultDevice) {
  EXPECT_EQ(callOnce("vantuDeviceName"), R"({"data":"iPhone14,5"})");
  EXPECT_EQ(callOnce("vantuOsVersion"), R"({"data":"17.5"})");
  EXPECT_EQ(callOnce("vantuDeviceLocale"), R"({"data":"en"})");
}

TEST_F(DeviceInfoBridgesTest, EveryBridgeReportsItsCall) {
  apply(R"({"delegates": {"host": {}}, "screens": [{"name": "page", "delegate": "host"}]})");
  for (const char* bridge : {"vantuDeviceName", "vantuOsVersion", "vantuDeviceLocale", "vantuDeviceImei",
                             "vantuNetworkType", "vantuDeviceData", "vantuGetAppVersion", "vantuGetAppInfo"}) {
    auto outcome = BridgeTestFixture::call(bridge, Dict{}, "page");
    EXPECT_EQ(outcome.answers.size(), 1u) << bridge;
    EXPECT_EQ(outcome.reported, Lines{bridge});
  }
}

// --- App info.

class AppInfoTest : public DeviceInfoBridgesTest {
 protected:
  void SetUp() override {
    DeviceInfoBridgesTest::SetUp();
    apply(R"({
      "app": {"info": {"CFBundleShortVersionString": "3.2.1"}},
      "delegates": {
        "rich":      {"answers": {"getAppInfo": {"success": true, "value": {"channel": "store", "build": 812}}}},
        "erring":    {"answers": {"getAppInfo": {"success": true, "value": {"channel": "store"},
                                                 "error": {"domain": "Host", "code": 3, "message": "busy"}}}},
        "textual":   {"answers": {"getAppInfo": {"success": true, "value": "store"}}},
        "empty":     {"answers": {"getAppInfo": {"success": true}}},
        "late":      {"answers": {"getAppInfo": {"success": true, "value": {"late": true}, "after": 2}}},
        "plain":     {"kind": "object"}
      },
      "screens": [
        {"name": "rich", "delegate": "rich", "children": [{"name": "richChild"}]},
        {"name": "erring", "delegate": "erring"},
        {"name": "textual", "delegate": "textual"},
        {"name": "empty", "delegate": "empty"},
        {"name": "late", "delegate": "late"},
        {"name": "plain", "delegate": "plain"},
        {"name": "bare"}
      ]})");
    device.takeDelegateCalls();
  }
  /// The getAppInfo calls made since the last look, by delegate name.
  Lines appInfoCalls() {
    Lines names;
    for (const auto& c : device.takeDelegateCalls()) {
      if (c.getString("operation") == "getAppInfo") names.push_back(c.getString("delegate").value_or("?"));
    }
    return names;
  }
};

constexpr const char* kBare = R"({"appVersion":"3.2.1","h5Version":"5.6.0"})";

TEST_F(AppInfoTest, TheHostsDictionaryIsAddedAndOnlyThenWrappedEvenWhenItComesLate) {
  struct Case {
    const char* screen;
    std::string answer;
    Lines asked;
  };
  const Case cases[] = {
      {"richChild", R"({"data":{"appVersion":"3.2.1","h5Version":"5.6.0","app_info_pt":{"channel":"store","build":812}}})",
       {"rich"}},
      {"erring", kBare, {"erring"}},
      {"textual", kBare, {"textual"}},
      {"empty", kBare, {"empty"}},  // a refusal is pinned by runner case 11
      {"plain", kBare, {}},
      {"bare", kBare, {}},
      {"", kBare, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.screen);
    EXPECT_EQ(call("vantuGetAppInfo", c.screen), Lines{c.answer});
    EXPECT_EQ(appInfoCalls(), c.asked);
  }
  // A late host answer is waited for.
  std::vector<std::string> answers;
  registry.dispatch("vantuGetAppInfo", H5HandlerInputParams(device.screen("late"), {}, [&](const Value& a) {
                      answers.push_back(json::write(a));
                    }));
  device.dispatch().runReady();
  EXPECT_TRUE(answers.empty());
  EXPECT_EQ(appInfoCalls(), Lines{"late"});
  device.dispatch().advance(secondsToDuration(1.5));
  EXPECT_TRUE(answers.empty());
  device.dispatch().advance(secondsToDuration(0.5));
  EXPECT_EQ(answers, Lines{R"({"data":{"appVersion":"3.2.1","h5Version":"5.6.0","app_info_pt":{"late":true}}})"});
}

// --- The scenario section.

TEST_F(DeviceInfoBridgesTest, TheDeviceSectionRejectsWhatItDoesNotKnowAndReadsEveryFlag) {
  struct Case {
    const char* scenario;
    const char* reason;
  };
  const Case cases[] = {
      {R"({"device": []})", "device: must be an object"},
      {R"({"device": {"colour": "red"}})", "device: unknown field \"colour\""},
      {R"({"device": {"locale": 1}})", "device: \"locale\" must be a string or null"},
      {R"({"device": {"network": {"flags": ["reachable", "isWiFi"]}}})", "device: unknown reachability flag \"isWiFi\""},
      {R"({"device": {"network": {"flags": -1}}})", "device: \"network.flags\" must fit in 32 bits"},
      // With fields it would take: a rejected network object changes nothing of the network (checked below).
      {R"({"device": {"network": {"flags": ["reachable", "isWWAN"], "radioAccessTechnology": null, "speed": 1}}})",
       "device: network: unknown field \"speed\""},
  };
  for (const auto& c : cases) {
    auto parsed = json::parse(c.scenario);
    ASSERT_TRUE(parsed.ok()) << c.scenario;
    EXPECT_EQ(device.apply(parsed.value()), std::optional<std::string>(c.reason)) << c.scenario;
  }
  EXPECT_EQ(device.reachability().flags(), reachability_flag::kReachable);
  EXPECT_EQ(device.facts().radioAccessTechnology(), "CTRadioAccessTechnologyLTE");

  // Every flag name has its own bit (flags as a number are in the network type table).
  apply(R"({"device": {"network": {"flags": ["transientConnection", "reachable", "connectionRequired",
            "connectionOnTraffic", "interventionRequired", "connectionOnDemand", "isLocalAddress", "isDirect",
            "isWWAN"]}}})");
  EXPECT_EQ(device.reachability().flags(), 0x7003fu);
}

}  // namespace
}  // namespace vantu
