#pragma once
// A device profile: the simulated device's capability services (permission
// states and prompt answers, location and geocoding, owner authentication)
// on a platform of their own. A real container takes the capabilities its
// platform lacks from a profile, so page authors can try denied
// permissions, no position fix or a failed authentication on a desktop.
// Its "pickers" section scripts what the user picks, in place of the
// container's picker dialogs.

#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "platforms/sim/sim_authentication.h"
#include "platforms/sim/sim_authorization.h"
#include "platforms/sim/sim_location.h"
#include "platforms/sim/sim_pickers.h"
#include "vantu/platform/platform.h"
#include "vantu/value/value.h"

namespace vantu::sim {

class DeviceProfile {
 public:
  /// The sections a profile may hold; each reads as in a scenario.
  static constexpr std::string_view kSections[] = {"permissions", "location", "deviceOwnerAuthentication",
                                                      "pickers"};

  /// Services answering on `dispatch`'s main queue, in their default
  /// states, then changed by `profile` (an object holding any of
  /// kSections). Returns the reason when the profile is malformed.
  static std::variant<DeviceProfile, std::string> load(const Value& profile, std::shared_ptr<Dispatch> dispatch);

  /// Puts the services into `platform`, replacing what it had for them.
  void installInto(Platform& platform) const;

  /// The scripted pickers, when the profile has a "pickers" section (their
  /// relative file names are read against the current directory until the
  /// caller sets `baseDirectory`); nullptr otherwise.
  const std::shared_ptr<SimPickers>& pickers() const { return pickers_; }

 private:
  explicit DeviceProfile(std::shared_ptr<Dispatch> dispatch);

  std::shared_ptr<EffectLog> effects_;
  std::shared_ptr<SimAuthorization> authorization_;
  std::shared_ptr<SimLocationServices> locationServices_;
  std::shared_ptr<SimGeocoder> geocoder_;
  std::shared_ptr<SimDeviceOwnerAuthentication> deviceOwnerAuthentication_;
  std::shared_ptr<SimPickers> pickers_;
};

}  // namespace vantu::sim
