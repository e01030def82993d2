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

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/core/sim_fixture.h"
#include "vantu/runtime/bridge_registry.h"

namespace vantu::testing_support {

using Strings = std::vector<std::string>;

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

/// {"error":2,"message":"<message>"} as JSON text.
std::string flatError(std::string_view message);

/// What a call (or a stretch of virtual time) produced.
struct Outcome {
  Strings answers;    // as JSON text, in order
  Strings reported;   // labels of the "Bridge Analytics" events
  Strings hostCalls;  // every other scripted delegate call, as JSON text
};

class HostBridgeFixture : public SimFixture {
 protected:
  void SetUp() override;

  /// Re-applies the app with the delegate entries of "host" and "light" and
  /// the environment section given.
  void useHost(std::string_view hostEntry, std::string_view lightEntry = R"({"otherwise": "default"})",
               std::string_view environment = R"({"delegate": "envHost"})");

  /// Calls `bridge` from `screen` ("" for none) and runs what is due now.
  Outcome call(std::string_view bridge, std::string_view dataJson, std::string_view screen = "page");
  Outcome call(std::string_view bridge, Dict data, std::string_view screen = "page");
  /// Moves virtual time forward and reports what happened meanwhile.
  Outcome advance(double seconds);

  BridgeRegistry registry;

 private:
  Outcome collect();
  Strings answers_;
};

}  // namespace vantu::testing_support
