#include "platforms/sim/device_profile.h"

#include <algorithm>

#include "platforms/sim/scenario.h"

namespace vantu::sim {

DeviceProfile::DeviceProfile(std::shared_ptr<Dispatch> dispatch)
    : effects_(std::make_shared<EffectLog>()),
      authorization_(std::make_shared<SimAuthorization>(dispatch, effects_)),
      locationServices_(std::make_shared<SimLocationServices>(dispatch, authorization_)),
      geocoder_(std::make_shared<SimGeocoder>(dispatch, effects_)),
      deviceOwnerAuthentication_(std::make_shared<SimDeviceOwnerAuthentication>(dispatch, effects_)) {}

std::variant<DeviceProfile, std::string> DeviceProfile::load(const Value& profile, std::shared_ptr<Dispatch> dispatch) {
  const Dict* sections = profile.asDict();
  if (!sections) return std::string("a device profile must be a JSON object");
  for (const auto& [key, value] : *sections) {
    const std::string name = key.text();
    if (std::find(std::begin(kSections), std::end(kSections), name) == std::end(kSections)) {
      return "unknown device profile section \"" + name +
             "\" (a profile holds \"permissions\", \"location\", \"deviceOwnerAuthentication\" and \"pickers\")";
    }
  }
  DeviceProfile loaded(dispatch);
  std::optional<std::string> error;
  if (const Value* v = sections->find("permissions")) error = loadPermissions(*loaded.authorization_, *v);
  if (error) return "permissions: " + *error;
  if (const Value* v = sections->find("location")) error = loadLocation(*loaded.locationServices_, *loaded.geocoder_, *v);
  if (error) return "location: " + *error;
  if (const Value* v = sections->find("deviceOwnerAuthentication")) {
    error = loadDeviceOwnerAuthentication(*loaded.deviceOwnerAuthentication_, *v);
  }
  if (error) return "deviceOwnerAuthentication: " + *error;
  if (const Value* v = sections->find("pickers")) {
    loaded.pickers_ = std::make_shared<SimPickers>(std::move(dispatch));
    error = loadPickers(*loaded.pickers_, *v);
  }
  if (error) return "pickers: " + *error;
  return loaded;
}

void DeviceProfile::installInto(Platform& platform) const {
  platform.authorization = authorization_;
  platform.locationServices = locationServices_;
  platform.geocoder = geocoder_;
  platform.deviceOwnerAuthentication = deviceOwnerAuthentication_;
}

}  // namespace vantu::sim
