#include "platforms/sim/sim_location.h"

#include <algorithm>

namespace vantu::sim {
namespace {

class SimLocationManager : public LocationManager {
 public:
  explicit SimLocationManager(std::weak_ptr<SimLocationServices> services) : services_(std::move(services)) {}

 protected:
  void requestWhenInUse() override {
    if (auto services = services_.lock()) services->requestWhenInUse();
  }
  std::optional<Coordinate> lastLocation() const override {
    auto services = services_.lock();
    return services ? services->lastFix : std::nullopt;
  }

 private:
  std::weak_ptr<SimLocationServices> services_;
};

}  // namespace

AuthorizationState SimLocationServices::currentAuthorization() const {
  return servicesEnabled ? authorization_->state(ProtectedResource::location) : AuthorizationState::denied;
}

std::shared_ptr<LocationManager> SimLocationServices::createManager() {
  auto manager = std::make_shared<SimLocationManager>(weak_from_this());
  std::erase_if(managers_, [](const auto& m) { return m.expired(); });
  managers_.push_back(manager);
  return manager;
}

void SimLocationServices::requestWhenInUse() {
  // As on a phone: one prompt at a time, and only while undecided.
  if (promptShown_ || currentAuthorization() != AuthorizationState::notDetermined) return;
  promptShown_ = true;
  // The system shows its prompt after the call has returned, so the caller
  // still reads the undecided state.
  dispatch_->main()->async([weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    self->authorization_->request(ProtectedResource::location, [weak](AuthorizationState state) {
      if (auto self = weak.lock()) {
        self->promptShown_ = false;
        self->tellManagers(state);
      }
    });
  });
}

void SimLocationServices::tellManagers(AuthorizationState state) {
  auto managers = managers_;  // a delegate may make a manager meanwhile
  for (const auto& weak : managers) {
    if (auto manager = weak.lock()) manager->authorizationDidChange(state);
  }
}

void SimGeocoder::reverseGeocodeLocation(Coordinate position, Completion completion) {
  effects_->record(Dict{{"effect", "reverseGeocode"}, {"latitude", position.latitude}, {"longitude", position.longitude}});
  dispatch_->main()->async([completion = std::move(completion), found = placemarks, failure = error] {
    completion(failure ? std::vector<Placemark>{} : found, failure);
  });
}

}  // namespace vantu::sim
