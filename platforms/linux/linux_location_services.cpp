#include "platforms/linux/linux_location_services.h"

namespace vantu::linux_platform {

std::shared_ptr<LinuxLocationServices> LinuxLocationServices::make(std::shared_ptr<PermissionStore> store,
                                                                   std::shared_ptr<Authorization> authorization,
                                                                   std::shared_ptr<Dispatch> dispatch,
                                                                   PositionSource position) {
  std::shared_ptr<LinuxLocationServices> services(
      new LinuxLocationServices(std::move(store), std::move(authorization), std::move(dispatch), std::move(position)));
  std::weak_ptr<LinuxLocationServices> weak = services;
  services->storeObservation_ = services->store_->observe([weak](ProtectedResource resource, AuthorizationState state) {
    auto self = weak.lock();
    if (self && resource == ProtectedResource::location) self->tellManagers(state);
  });
  return services;
}

AuthorizationState LinuxLocationServices::doAuthorizationState() const {
  return store_->state(ProtectedResource::location);
}

void LinuxLocationServices::questionAnswered(AuthorizationState state) {
  // A stored answer has reached the managers through the store already; one
  // that was not stored (nobody could be asked) is told here.
  if (authorizationState() != state) tellManagers(state);
}

}  // namespace vantu::linux_platform
