// The device and app info bridges on the simulated device: answers over a
// range of devices and networks, the app-info shapes, the "device" section.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/bridges/host/device_info_data_store.h"
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
    std::string name, network, expected;
  };
  // The finer connection rules are checked over every flag combination in reachability_test.
  std::vector<Case> cases = {
      {"default Wi-Fi", "{}", "Wifi"},
      {"Wi-Fi whatever the radio says", R"({"flags": ["reachable"], "radioAccessTechnology": "CTRadioAccessTechnologyNR"})",
       "Wifi"},
      {"LTE, flags as a number", R"({"flags": 262146, "radioAccessTechnology": "CTRadioAccessTechnologyLTE"})", "4G"},
      {"a known name in other letter case", cellular(R"("CTRadioAccessTechnologylte")"),
       R"(Unknown Technology: "CTRadioAccessTechnologylte")"},
      {"a known name with a trailing blank", cellular(R"("CTRadioAccessTechnologyLTE ")"),
       R"(Unknown Technology: "CTRadioAccessTechnologyLTE ")"},
      {"an empty technology text", cellular(R"("")"), R"(Unknown Technology: "")"},
      {"cellular, no technology", cellular("null"), "Unknown"},
      {"no connection", R"({"flags": []})", "No Connection"},
      {"reachability unavailable", R"({"reachabilityUnavailable": true})", "Unknown"},
      {"reachability unavailable on cellular", R"({"flags": ["reachable", "isWWAN"], "reachabilityUnavailable": true})",
       "Unknown"},
  };
  for (auto [technology, word] : {std::pair{"GPRS", "2G"}, {"Edge", "2G"}, {"CDMA1x", "2G"}, {"WCDMA", "3G"},
                                  {"HSDPA", "3G"}, {"HSUPA", "3G"}, {"CDMAEVDORev0", "3G"}, {"CDMAEVDORevA", "3G"},
                                  {"CDMAEVDORevB", "3G"}, {"eHRPD", "3G"}}) {
    cases.push_back({technology, cellular(std::string("\"CTRadioAccessTechnology") + technology + "\""), word});
  }
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    // Each case starts from the default network.
    apply(R"({"device": {"network": {"flags": ["reachable"], "radioAccessTechnology": "CTRadioAccessTechnologyLTE",
              "reachabilityUnavailable": false}}})");
    apply(R"({"device": {"network": )" + c.network + "}}");
    std::string expected = json::write(Value(c.expected));
    EXPECT_EQ(callOnce("vantuNetworkType"), R"({"data":)" + expected + "}");
    EXPECT_EQ(DeviceInfoDataStore::createDeviceNetworkType(), c.expected);
    auto data = callOnce("vantuDeviceData");
    EXPECT_NE(data.find(R"("network_type":)" + expected + "}}"), std::string::npos) << data;
    // Each reading starts and drops a monitor of its own: nothing keeps watching, nothing is posted afterwards.
    EXPECT_EQ(device.reachability().watchingHandles(), 0u);
    EXPECT_TRUE(device.notifications().takePosted().empty());
  }
}

TEST_F(DeviceInfoBridgesTest, DeviceFactsForEachDevice) {
  struct Case {
    const char *device, *model, *os, *locale;
  };
  for (const auto& c : {Case{"{}", "iPhone14,5", "17.5", "en"},
                        Case{R"({"model": "", "systemVersion": "", "locale": ""})", "", "", ""}}) {
    SCOPED_TRACE(c.device);
    apply(std::string(R"({"device": )") + c.device + "}");
    auto text = [](const char* s) { return json::write(Value(s)); };
    EXPECT_EQ(callOnce("vantuDeviceName"), R"({"data":)" + text(c.model) + "}");
    EXPECT_EQ(callOnce("vantuOsVersion"), R"({"data":)" + text(c.os) + "}");
    EXPECT_EQ(callOnce("vantuDeviceLocale"), R"({"data":)" + text(c.locale) + "}");
    EXPECT_EQ(callOnce("vantuDeviceImei"), R"({"data":""})");
    EXPECT_EQ(callOnce("vantuDeviceManufacturer"), R"({"data":"Apple"})");
    EXPECT_EQ(callOnce("vantuDeviceData"),
              R"({"data":{"name":)" + text(c.model) + R"(,"manufacturer":"Apple","os_version":)" + text(c.os) +
                  R"(,"imei":"","locale":)" + text(c.locale) + R"(,"network_type":"Wifi"}})");
  }
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
        "emptyDict": {"answers": {"getAppInfo": {"success": true, "value": {}}}},
        "late":      {"answers": {"getAppInfo": {"success": true, "value": {"late": true}, "after": 2}}},
        "partial":   {"otherwise": "default", "answers": {"trackCustomEventFor": {"success": true}}},
        "plain":     {"kind": "object"}
      },
      "environment": {"delegate": "rich"},
      "screens": [
        {"name": "rich", "delegate": "rich", "children": [{"name": "richChild"}]},
        {"name": "erring", "delegate": "erring"},
        {"name": "textual", "delegate": "textual"},
        {"name": "empty", "delegate": "empty"},
        {"name": "emptyDict", "delegate": "emptyDict"},
        {"name": "late", "delegate": "late"},
        {"name": "partial", "delegate": "partial"},
        {"name": "plain", "delegate": "plain", "children": [{"name": "plainChild"}]},
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
      {"emptyDict", R"({"data":{"appVersion":"3.2.1","h5Version":"5.6.0","app_info_pt":{}}})", {"emptyDict"}},
      // The partial delegate leaves getAppInfo to the default, which asks the environment's delegate.
      {"partial", R"({"data":{"appVersion":"3.2.1","h5Version":"5.6.0","app_info_pt":{"channel":"store","build":812}}})",
       {"rich"}},
      {"erring", kBare, {"erring"}},
      {"textual", kBare, {"textual"}},
      {"empty", kBare, {"empty"}},  // a refusal is pinned by runner case 11
      {"plain", kBare, {}},
      {"plainChild", kBare, {}},
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

  // Without an environment delegate the partial delegate's default fails, to the bare answer.
  apply(R"({"environment": null})");
  EXPECT_EQ(call("vantuGetAppInfo", "partial"), Lines{kBare});
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
      {R"({"device": {"network": {"speed": 1}}})", "device: network: unknown field \"speed\""},
  };
  for (const auto& c : cases) {
    auto parsed = json::parse(c.scenario);
    ASSERT_TRUE(parsed.ok()) << c.scenario;
    EXPECT_EQ(device.apply(parsed.value()), std::optional<std::string>(c.reason)) << c.scenario;
  }
  // A rejected network object changes nothing of the network.
  auto parsed = json::parse(
      R"({"device": {"network": {"flags": ["reachable", "isWWAN"], "radioAccessTechnology": null, "speed": 1}}})");
  ASSERT_TRUE(device.apply(parsed.value()).has_value());
  EXPECT_EQ(device.reachability().flags(), reachability_flag::kReachable);
  EXPECT_EQ(device.facts().radioAccessTechnology(), "CTRadioAccessTechnologyLTE");

  // Every flag name has its own bit; numbers are taken as they are.
  apply(R"({"device": {"network": {"flags": ["transientConnection", "reachable", "connectionRequired",
            "connectionOnTraffic", "interventionRequired", "connectionOnDemand", "isLocalAddress", "isDirect",
            "isWWAN"]}}})");
  EXPECT_EQ(device.reachability().flags(), 0x7003fu);
  apply(R"({"device": {"network": {"flags": 65538}}})");
  EXPECT_EQ(device.reachability().flags(), reachability_flag::kReachable | reachability_flag::kIsLocalAddress);
}

}  // namespace
}  // namespace vantu
