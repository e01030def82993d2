#include "fuzz/support/fuzz_device.h"

#include <chrono>
#include <string>

#include "fuzz/support/loopback_http.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/value/json.h"

namespace vantu::fuzzing {
namespace {

constexpr auto kRealIoBound = std::chrono::seconds(20);
// Bounds the timers run per input: a timer that re-arms itself forever
// would otherwise keep the loop busy.
constexpr int kMaxTimerRounds = 256;

std::string file(const char* name) { return std::string(VANTU_FUZZ_FILES "/") + name; }

Value parseOrDie(const std::string& text) {
  auto parsed = json::parse(text);
  if (!parsed.ok()) finding("fuzz support: bad scenario text: " + parsed.error().message);
  return parsed.value();
}

std::string quoted(const std::string& text) {
  std::string out;
  json::writeString(out, text);
  return out;
}

// The sections every state shares: the host's objects and the UI tree.
const char* const kWorld = R"(
  "app": {"info": {"CFBundleShortVersionString": "3.2.1", "CFBundleName": "Fuzz", "CFBundleDisplayName": "Fuzz"}},
  "delegates": {
    "host": {"answers": {
      "getCustomerId": {"success": true, "value": "c-42"},
      "fetchAuthToken": {"success": true, "value": "token-1"},
      "fetchValuesForKeys": {"success": true, "value": {"a": 1, "b": "two"}},
      "fetchParamsAgainstKey": {"success": true, "value": {"k": [1, 2]}},
      "login": {"success": false, "error": {"domain": "Host", "code": 7, "message": "no", "reason": "test"}},
      "logout": {"success": true, "after": 2},
      "navigate": {"never": true},
      "getAppInfo": {"success": true, "value": {"name": "fuzz"}}}},
    "partial": {"answers": {"trackCustomEventFor": {"success": true}, "openDeeplink": {"success": true}},
                "otherwise": "default"},
    "plain": {"kind": "object"}
  },
  "environment": {"delegate": "host", "viewControllerProvider": {"returns": "screen"}},
  "screens": [
    {"name": "nav", "kind": "navigation", "navigationBar": {"hidden": false, "height": 44}, "children": [
      {"name": "shop", "uniqueAppIdentifier": "shop.mini", "isH5": true, "appType": "miniapp", "delegate": "partial",
       "topSafeAreaTreatmentRequired": true, "keyboardOffsetFixer": true,
       "view": {"frame": [0, 0, 390, 844], "subviews": [{"kind": "webView", "name": "shop.web"}]},
       "children": [{"name": "shop.detail"}]}]},
    {"name": "plain", "delegate": "plain", "uniqueAppIdentifier": "plain.app"},
    {"name": "tabs", "kind": "tabBar", "children": [
      {"name": "tab.one", "delegate": "host", "isHc": true, "uniqueAppIdentifier": "tab.mini", "appType": "generic",
       "bottomSafeAreaTreatmentRequired": true}]}
  ],
  "defaultScreen": "shop",
  "http": {"metricsOrder": "afterCompletion"}
)";

std::string capabilities(DeviceState state) {
  switch (state) {
    case DeviceState::granted:
      return R"("permissions": {"camera": "authorized", "photoLibrary": "authorized", "location": "authorizedWhenInUse",
                                "microphone": "authorized", "contacts": "authorized", "speechRecognition": "authorized"},
                "location": {"lastFix": {"latitude": 21.0285, "longitude": 105.8542},
                             "geocoder": {"placemarks": [{"subLocality": "Hoan Kiem", "locality": "Hanoi",
                                                          "isoCountryCode": "VN", "country": "Vietnam"}]}},
                "deviceOwnerAuthentication": {"answer": {"success": true}},
                "pickers": {"photoLibrary": )" +
             quoted(file("photo.png")) + R"(, "camera": )" + quoted(file("photo.JPEG")) + R"(, "documents": [)" +
             quoted(file("notes.txt")) + ", " + quoted(file("report.PDF")) + "]}";
    case DeviceState::denied:
      return R"("permissions": {"camera": "denied", "photoLibrary": "restricted", "location": "denied",
                                "microphone": "denied", "contacts": "restricted", "speechRecognition": "unrecognized"},
                "location": {"servicesEnabled": false, "geocoder": {"error": {"message": "no network", "code": 2}}},
                "deviceOwnerAuthentication": {"policyError": -5},
                "pickers": {"photoLibrary": "cancel", "camera": "cancel", "documents": "cancel"})";
    case DeviceState::undecided:
      return R"("permissions": {"camera": {"state": "notDetermined", "answer": "authorized"},
                                "photoLibrary": {"state": "notDetermined", "answer": "limited"},
                                "location": {"state": "notDetermined", "answer": "authorizedWhenInUse"},
                                "microphone": {"state": "notDetermined", "answer": "denied"},
                                "contacts": "notDetermined", "speechRecognition": "notDetermined"},
                "location": {"lastFix": {"latitude": -33.86, "longitude": 151.2}},
                "deviceOwnerAuthentication": {"answer": {"error": -2}},
                "pickers": {"photoLibrary": {"file": )" +
             quoted(file("photo.heic")) + R"(, "url": null}, "camera": )" + quoted(file("empty.txt")) +
             R"(, "documents": [)" + quoted(file("README")) + ", " + quoted(file("missing.txt")) + "]}";
    case DeviceState::held:
      return R"("permissions": {"camera": {"state": "notDetermined", "answer": null},
                                "photoLibrary": {"state": "notDetermined", "answer": null},
                                "location": {"state": "notDetermined", "answer": null},
                                "microphone": {"state": "notDetermined", "answer": null}},
                "deviceOwnerAuthentication": {"answer": null},
                "pickers": {"photoLibrary": "hold", "camera": "hold", "documents": "hold"})";
  }
  return "";
}

void prepare(sim::SimDevice& device) {
  static const bool proxiesIgnored = (ignoreProxyEnvironment(), true);
  (void)proxiesIgnored;
  auto& bundle = *device.platformBundle();
  bundle.httpTransport = std::make_shared<LoopbackOnlyTransport>(bundle.httpTransport);
  device.install();
  Laizaxlu::shared().setupWhiteListAppData({{"shop.mini", "shop.example"}, {"tab.mini", "tab.example"}});
  Laizaxlu::shared().setupWhiteListWebDomains({"shop.example", "tab.example"});
}

}  // namespace

DeviceState deviceStateNamed(std::string_view name) {
  if (name == "denied") return DeviceState::denied;
  if (name == "undecided") return DeviceState::undecided;
  if (name == "held") return DeviceState::held;
  return DeviceState::granted;
}

const Value& referenceScenario(DeviceState state) {
  static const Value scenarios[] = {
      parseOrDie("{" + std::string(kWorld) + "," + capabilities(DeviceState::granted) + "}"),
      parseOrDie("{" + std::string(kWorld) + "," + capabilities(DeviceState::denied) + "}"),
      parseOrDie("{" + std::string(kWorld) + "," + capabilities(DeviceState::undecided) + "}"),
      parseOrDie("{" + std::string(kWorld) + "," + capabilities(DeviceState::held) + "}"),
  };
  return scenarios[static_cast<int>(state)];
}

std::unique_ptr<sim::SimDevice> makeBareDevice() {
  auto device = std::make_unique<sim::SimDevice>();
  prepare(*device);
  return device;
}

std::unique_ptr<sim::SimDevice> makeDevice(const Value& scenario) {
  auto device = makeBareDevice();
  // The environment section installs providers: applied after install.
  if (auto error = device->apply(scenario)) finding("fuzz support: the scenario was refused: " + *error);
  return device;
}

bool runUntilIdle(sim::SimDevice& device) {
  auto& loop = device.dispatch();
  for (int round = 0; round < kMaxTimerRounds; ++round) {
    if (!loop.settle(kRealIoBound)) return false;
    auto next = loop.nextTimer();
    if (!next) return true;
    loop.advance(*next - loop.now());
  }
  return loop.settle(kRealIoBound);
}

void requireDeliverable(const Value& answer) {
  const std::string text = json::write(answer);
  auto parsed = json::parse(text);
  if (!parsed.ok()) finding("an answer's JSON does not read back: " + text);
}

}  // namespace vantu::fuzzing
