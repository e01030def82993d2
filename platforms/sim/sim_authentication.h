#pragma once
// Device-owner authentication on the simulated device. The user's answer
// to the sheet is scripted (the "deviceOwnerAuthentication" section) or
// held until the runner's "answerAuthentication" command gives it. Replies
// come on the device's own authentication queue, not the main queue.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platforms/sim/sim_ui.h"
#include "vantu/platform/device_owner_authentication.h"
#include "vantu/platform/dispatch.h"
#include "vantu/value/value.h"

namespace vantu::sim {

/// How an evaluation ends: success, or a failure with the system's error
/// code (none: a failure without an error).
struct AuthenticationAnswer {
  bool success = true;
  std::optional<std::int64_t> errorCode;
};

/// Reads {"success": true} or {"success": false} or {"error": CODE};
/// returns the reason on bad input.
std::optional<std::string> readAuthenticationAnswer(const Value& value, AuthenticationAnswer& out);

class SimDeviceOwnerAuthentication : public DeviceOwnerAuthentication,
                                     public std::enable_shared_from_this<SimDeviceOwnerAuthentication> {
 public:
  SimDeviceOwnerAuthentication(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<EffectLog> effects);

  /// Set when the device cannot evaluate the policy (no passcode: -5): every
  /// evaluation fails with it at once and no sheet is shown.
  std::optional<std::int64_t> policyError;
  /// The user's answer to the sheet; none holds the sheet up.
  std::optional<AuthenticationAnswer> answer = AuthenticationAnswer{};

  /// Answers every held sheet; false when none is up.
  bool answerHeldSheets(const AuthenticationAnswer& given);

  // Used by the simulated contexts.
  void evaluate(const AuthenticationContext& context, const std::string& reason, AuthenticationContext::Reply reply);

 protected:
  std::shared_ptr<AuthenticationContext> doMakeContext() override;

 private:
  void reply(const AuthenticationAnswer& given, AuthenticationContext::Reply reply);

  std::shared_ptr<SerialQueue> queue_;
  std::shared_ptr<EffectLog> effects_;
  std::vector<AuthenticationContext::Reply> held_;
};

}  // namespace vantu::sim
