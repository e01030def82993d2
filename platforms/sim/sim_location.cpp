#include "platforms/sim/sim_location.h"

namespace vantu::sim {

AuthorizationState SimLocationServices::doAuthorizationState() const {
  return servicesEnabled ? authorization_->state(ProtectedResource::location) : AuthorizationState::denied;
}

void SimGeocoder::doReverseGeocode(Coordinate position, Completion completion) {
  effects_->record(Dict{{"effect", "reverseGeocode"}, {"latitude", position.latitude}, {"longitude", position.longitude}});
  dispatch_->main()->async([completion = std::move(completion), found = placemarks, failure = error] {
    completion(failure ? std::vector<Placemark>{} : found, failure);
  });
}

}  // namespace vantu::sim
