#include "vantu/device/location_permission_requester.h"

#include "vantu/platform/platform.h"

namespace vantu {

LocationManager& LocationPermissionRequester::locationMgr() {
  if (!locationMgr_) {
    locationMgr_ = platform().locationServices->makeManager();
    locationMgr_->setDelegate(weak_from_this());
  }
  return *locationMgr_;
}

void LocationPermissionRequester::requestAuthorization(Completion completion) {
  callbacks_.push_back(std::move(completion));
  if (isAuthorizationRequested_) return;
  isAuthorizationRequested_ = true;
  locationMgr().requestWhenInUseAuthorization();
}

void LocationPermissionRequester::locationManagerDidChangeAuthorization(AuthorizationState state) {
  bool granted = false;
  switch (state) {
    case AuthorizationState::restricted:
    case AuthorizationState::denied:
      break;
    case AuthorizationState::authorized:
    case AuthorizationState::authorizedWhenInUse:
      granted = true;
      break;
    default:
      isAuthorizationRequested_ = false;
      return;
  }
  // Taken before calling, so that a completion that asks again starts a
  // fresh round instead of joining this one.
  auto completions = std::exchange(callbacks_, {});
  isAuthorizationRequested_ = false;
  for (auto& completion : completions) completion(granted);
}

}  // namespace vantu
