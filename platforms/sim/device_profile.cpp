#include "platforms/sim/device_profile.h"

#include <fmt/format.h>

#include <algorithm>

#include "platforms/sim/scenario.h"

namespace vantu::sim {
namespace {

/// The platform's own device facts with the profile's radio technology.
class RadioOverride : public DeviceFacts {
 public:
  RadioOverride(std::shared_ptr<DeviceFacts> base, std::optional<std::string> radio)
      : base_(std::move(base)), radio_(std::move(radio)) {}

 protected:
  std::optional<Dict> doBundleInfo() const override { return base_->bundleInfo(); }
  std::string doModelIdentifier() const override { return base_->modelIdentifier(); }
  std::string doSystemVersion() const override { return base_->systemVersion(); }
  std::optional<std::string> doLanguageCode() const override { return base_->languageCode(); }
  std::optional<std::string> doRadioAccessTechnology() const override { return radio_; }
  bool doIsRunningOnDevice() const override { return base_->isRunningOnDevice(); }
  double doSecondsSince1970() const override { return base_->secondsSince1970(); }

 private:
  std::shared_ptr<DeviceFacts> base_;
  std::optional<std::string> radio_;
};

using Error = std::optional<std::string>;

}  // namespace

Error DeviceProfile::loadDelegates(const Value& value, const std::shared_ptr<Dispatch>& dispatch) {
  const Dict* named = value.asDict();
  if (!named) return std::string("must be an object of named delegates");
  for (const auto& [key, given] : *named) {
    const std::string name = key.text();
    const Dict* d = given.asDict();
    if (!d) return fmt::format("\"{}\" must be an object", name);
    if (d->getString("kind").value_or("delegate") != "delegate") {
      return fmt::format("\"{}\": a profile holds delegates only (kind \"delegate\")", name);
    }
    auto delegate = std::make_shared<SimHostDelegate>(
        name, dispatch, [recorder = delegateRecorder_](std::string_view who, std::string_view operation, Dict arguments) {
          if (*recorder) (*recorder)(who, operation, std::move(arguments));
        });
    if (auto e = loadDelegate(*delegate, *d)) return fmt::format("\"{}\": {}", name, *e);
    delegates_[name] = std::move(delegate);
  }
  return std::nullopt;
}

Error DeviceProfile::loadEnvironment(const Value& value) {
  if (value.isNull()) return std::nullopt;
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object or null");
  for (const auto& [key, v] : *d) {
    if (key.text() != "delegate") return "unknown field \"" + key.text() + "\" (a profile's environment names a \"delegate\")";
    if (v.isNull()) continue;
    const std::string* name = v.asString();
    if (!name) return std::string("\"delegate\" must be the name of an entry of \"delegates\"");
    auto found = delegates_.find(*name);
    if (found == delegates_.end()) return fmt::format("no delegate named \"{}\"", *name);
    hostDelegate_ = found->second;
  }
  return std::nullopt;
}

std::variant<DeviceProfile, std::string> DeviceProfile::load(const Value& profile, const Platform& base) {
  const Dict* sections = profile.asDict();
  if (!sections) return std::string("a device profile must be a JSON object");
  for (const auto& [key, value] : *sections) {
    const std::string name = key.text();
    if (std::find(std::begin(kSections), std::end(kSections), name) == std::end(kSections)) {
      return "unknown device profile section \"" + name +
             "\" (a profile holds \"permissions\", \"location\", \"deviceOwnerAuthentication\", \"network\", "
             "\"pickers\", \"delegates\" and \"environment\")";
    }
  }
  const auto& dispatch = base.dispatch;
  auto effects = std::make_shared<EffectLog>();
  DeviceProfile loaded;
  std::optional<std::string> error;
  const Value* location = sections->find("location");
  if (const Value* v = sections->find("permissions"); v || (location && !base.authorization)) {
    loaded.authorization_ = std::make_shared<SimAuthorization>(dispatch, effects);
    if (v) error = loadPermissions(*loaded.authorization_, *v);
    if (error) return "permissions: " + *error;
  }
  if (location) {
    std::shared_ptr<Authorization> authorization = loaded.authorization_;
    if (!authorization) authorization = base.authorization;
    loaded.locationServices_ = std::make_shared<SimLocationServices>(dispatch, std::move(authorization));
    loaded.geocoder_ = std::make_shared<SimGeocoder>(dispatch, effects);
    error = loadLocation(*loaded.locationServices_, *loaded.geocoder_, *location);
    if (error) return "location: " + *error;
  }
  if (const Value* v = sections->find("deviceOwnerAuthentication")) {
    loaded.deviceOwnerAuthentication_ = std::make_shared<SimDeviceOwnerAuthentication>(dispatch, effects);
    error = loadDeviceOwnerAuthentication(*loaded.deviceOwnerAuthentication_, *v);
    if (error) return "deviceOwnerAuthentication: " + *error;
  }
  if (const Value* v = sections->find("network")) {
    loaded.reachability_ = std::make_shared<SimReachability>();
    std::optional<std::string> radio = base.device ? base.device->radioAccessTechnology() : std::nullopt;
    error = loadNetwork(*loaded.reachability_, radio, *v);
    if (error) return *error;
    if (base.device) loaded.facts_ = std::make_shared<RadioOverride>(base.device, std::move(radio));
  }
  if (const Value* v = sections->find("pickers")) {
    loaded.pickers_ = std::make_shared<SimPickers>(dispatch);
    error = loadPickers(*loaded.pickers_, *v);
    if (error) return "pickers: " + *error;
  }
  if (const Value* v = sections->find("delegates")) {
    error = loaded.loadDelegates(*v, dispatch);
    if (error) return "delegates: " + *error;
  }
  if (const Value* v = sections->find("environment")) {
    error = loaded.loadEnvironment(*v);
    if (error) return "environment: " + *error;
  }
  return loaded;
}

void DeviceProfile::installInto(Platform& platform) const {
  if (authorization_) platform.authorization = authorization_;
  if (locationServices_) platform.locationServices = locationServices_;
  if (geocoder_) platform.geocoder = geocoder_;
  if (deviceOwnerAuthentication_) platform.deviceOwnerAuthentication = deviceOwnerAuthentication_;
  if (reachability_) platform.reachability = reachability_;
  if (facts_) platform.device = facts_;
}

}  // namespace vantu::sim
