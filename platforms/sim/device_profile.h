#pragma once
// A device profile: simulated capability services laid over a real
// platform, so page authors can try denied permissions, no position fix,
// a failed owner authentication or another network on a desktop. Each
// section of the profile replaces the services it names; the platform keeps
// its own for the rest. The "pickers" section scripts what the user picks,
// in place of the container's picker dialogs. "delegates" and
// "environment" script the host: the delegate "environment" names answers
// the host-delegated bridges (login, token, navigation, ...).

#include <map>
#include <memory>
#include <string>
#include <variant>

#include "platforms/sim/sim_authentication.h"
#include "platforms/sim/sim_authorization.h"
#include "platforms/sim/sim_host_delegate.h"
#include "platforms/sim/sim_location.h"
#include "platforms/sim/sim_reachability.h"
#include "platforms/sim/sim_pickers.h"
#include "vantu/platform/platform.h"
#include "vantu/value/value.h"

namespace vantu::sim {

class DeviceProfile {
 public:
  /// The sections a profile may hold; each reads as in a scenario
  /// ("network" as the device section's "network" object).
  static constexpr std::string_view kSections[] = {"permissions", "location", "deviceOwnerAuthentication", "network",
                                                      "pickers", "delegates", "environment"};

  /// Reads `profile` (an object holding any of kSections) into services for
  /// its sections, answering on `base`'s main queue. A "location" section
  /// reads the app's location authorisation from the profile's
  /// "permissions" when it has them, else from `base`'s authorisation port
  /// (and, when `base` has none, from a simulated one in its default
  /// states, installed with it). Returns the reason when the profile is
  /// malformed.
  static std::variant<DeviceProfile, std::string> load(const Value& profile, const Platform& base);

  /// Puts the profile's services into `platform`, leaving the others.
  void installInto(Platform& platform) const;

  /// The scripted pickers, when the profile has a "pickers" section (their
  /// relative file names are read against the current directory until the
  /// caller sets `baseDirectory`); nullptr otherwise.
  const std::shared_ptr<SimPickers>& pickers() const { return pickers_; }

  /// The delegate the "environment" section names (from "delegates"): the
  /// host's delegate of the container; nullptr without one.
  const std::shared_ptr<SimHostDelegate>& hostDelegate() const { return hostDelegate_; }
  /// Tells `recorder` of every call a scripted delegate answers.
  void onDelegateCall(SimHostDelegate::CallRecorder recorder) const { *delegateRecorder_ = std::move(recorder); }

 private:
  DeviceProfile() = default;
  std::optional<std::string> loadDelegates(const Value& value, const std::shared_ptr<Dispatch>& dispatch);
  std::optional<std::string> loadEnvironment(const Value& value);

  std::shared_ptr<SimAuthorization> authorization_;
  std::shared_ptr<SimLocationServices> locationServices_;
  std::shared_ptr<SimGeocoder> geocoder_;
  std::shared_ptr<SimDeviceOwnerAuthentication> deviceOwnerAuthentication_;
  std::shared_ptr<SimReachability> reachability_;
  std::shared_ptr<DeviceFacts> facts_;
  std::shared_ptr<SimPickers> pickers_;
  std::map<std::string, std::shared_ptr<SimHostDelegate>, std::less<>> delegates_;
  std::shared_ptr<SimHostDelegate> hostDelegate_;
  std::shared_ptr<SimHostDelegate::CallRecorder> delegateRecorder_ = std::make_shared<SimHostDelegate::CallRecorder>();
};

}  // namespace vantu::sim
