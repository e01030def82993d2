#pragma once
// The host-delegated bridges are called through the registry from the
// screens of one simulated app whose host delegate each test scripts:
//
//   shell (delegate "host", id "mini.shop") > page > frame
//   bare         nothing attached (the environment still has "envHost")
//   plainHolder  a plain object attached, not a delegate
//   anon         delegate "host", no id
//   top (id "mini.top") > l1 > l2 > l3 (delegate "host")
//   far (delegate "host") > far1 > far2 > far3
//   light        delegate "light", which leaves unscripted operations to the
//                protocol default

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/bridge_test_fixture.h"

namespace vantu::testing_support {

inline constexpr std::string_view kNoContext = "Unable to get current H5 Context";
inline constexpr std::string_view kNoListeners = "Unable to get current H5 Context Listeners";

/// Every bridge of the family with arguments that pass its checks.
struct FamilyBridge {
  std::string_view bridge, reportedAs, operation, validData;
  std::string_view noViewController, noDelegate, hostFailed;
};

inline constexpr FamilyBridge kFamily[] = {
    {"vantuOpenDeeplink", "vantuOpenDeeplink", "openDeeplink", R"({"deeplink": "app://orders"})", kNoContext,
     kNoListeners, "Failed Navigation result!"},
    {"vantuNavigateTo", "vantuNavigateTo", "navigate", R"({"navigateTo": "orders"})", kNoContext, kNoListeners,
     "Failed Navigation result!"},
    {"vantuLogin", "vantuLogin", "login", R"({"reason": "checkout"})", kNoContext, kNoListeners, "failed to login!"},
    {"vantuLogout", "vantuLogout", "logout", "{}", kNoContext, kNoListeners, "failed to logout!"},
    {"vantuHandleSessionExpiry", "vantuLogout", "handleSessionExpiry", R"({"code": 401})", kNoContext, kNoListeners,
     "failed to handle session expiry!"},
    {"vantuFetchAuthToken", "vantuFetchAuthToken", "fetchAuthToken", R"({"scope": "pay"})", kNoContext, kNoListeners,
     "failed to fetch access token!"},
    {"vantuFetchCustomerId", "vantuFetchCustomerId", "getCustomerId", "{}", kNoContext, kNoListeners,
     "failed to fetch customer id!"},
    {"vantuFetchValuesForKeys", "vantuFetchValuesForKeys", "fetchValuesForKeys", R"({"keys": ["a"]})",
     "FetchValuesForKeys: Unable to get current H5 VC", "FetchValuesForKeys: Unable to get current H5 Context Listeners",
     "FetchValuesForKeys: Failed to get values for keys!"},
    {"vantuFetchParamsAgainstKey", "vantuFetchParamsAgainstKey", "fetchParamsAgainstKey", R"({"key": "promo"})",
     kNoContext, kNoListeners, "FetchParamsAgainstKeyHandler: Failed to get data!"},
    {"vantuAnalyticsTracking", "vantuAnalyticsTracking", "trackCustomEventFor", R"({"event": "open"})", kNoContext,
     kNoListeners, "failed to track Event"},
};

using Outcome = CallOutcome;

class HostBridgeFixture : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    useHost("{}");
  }

  /// Re-applies the app with the delegate entries of "host" and "light" and
  /// the environment section given.
  void useHost(std::string_view hostEntry, std::string_view lightEntry = R"({"otherwise": "default"})",
               std::string_view environment = R"({"delegate": "envHost"})") {
    apply(R"({"delegates": {"host": )" + std::string(hostEntry) + R"(, "light": )" + std::string(lightEntry) +
          R"(, "envHost": {}, "plain": {"kind": "object"}},
      "environment": )" + std::string(environment) + R"(,
      "screens": [
        {"name": "shell", "delegate": "host", "uniqueAppIdentifier": "mini.shop",
         "children": [{"name": "page", "children": [{"name": "frame"}]}]},
        {"name": "bare"},
        {"name": "plainHolder", "delegate": "plain", "uniqueAppIdentifier": "mini.plain"},
        {"name": "anon", "delegate": "host"},
        {"name": "top", "uniqueAppIdentifier": "mini.top",
         "children": [{"name": "l1", "children": [{"name": "l2", "children": [{"name": "l3", "delegate": "host"}]}]}]},
        {"name": "far", "delegate": "host",
         "children": [{"name": "far1", "children": [{"name": "far2", "children": [{"name": "far3"}]}]}]},
        {"name": "light", "delegate": "light", "uniqueAppIdentifier": "mini.light"}
      ]})");
    device.takeDelegateCalls();
  }
};

}  // namespace vantu::testing_support
