#include "platforms/linux/linux_location_services.h"

namespace vantu::linux_platform {
namespace {

class LinuxLocationManager : public LocationManager {
 public:
  explicit LinuxLocationManager(std::weak_ptr<LinuxLocationServices> services) : services_(std::move(services)) {}

 protected:
  void requestWhenInUse() override {
    if (auto services = services_.lock()) services->requestWhenInUse();
  }
  std::optional<Coordinate> lastLocation() const override {
    auto services = services_.lock();
    return services ? services->lastFix() : std::nullopt;
  }

 private:
  std::weak_ptr<LinuxLocationServices> services_;
};

}  // namespace

std::shared_ptr<LinuxLocationServices> LinuxLocationServices::make(std::shared_ptr<PermissionStore> store,
                                                                   std::shared_ptr<Authorization> authorization,
                                                                   std::shared_ptr<Dispatch> dispatch,
                                                                   PositionSource position) {
  std::shared_ptr<LinuxLocationServices> services(
      new LinuxLocationServices(std::move(store), std::move(authorization), std::move(dispatch), std::move(position)));
  services->storeObservation_ =
      services->store_->observe([weak = services->weak_from_this()](ProtectedResource resource, AuthorizationState state) {
        auto self = weak.lock();
        if (self && resource == ProtectedResource::location) self->tellManagers(state);
      });
  return services;
}

AuthorizationState LinuxLocationServices::currentAuthorization() const {
  return store_->state(ProtectedResource::location);
}

std::shared_ptr<LocationManager> LinuxLocationServices::createManager() {
  auto manager = std::make_shared<LinuxLocationManager>(weak_from_this());
  std::erase_if(managers_, [](const auto& m) { return m.expired(); });
  managers_.push_back(manager);
  return manager;
}

void LinuxLocationServices::requestWhenInUse() {
  if (promptShown_ || currentAuthorization() != AuthorizationState::notDetermined) return;
  promptShown_ = true;
  // Shown after the call has returned, so the caller still reads the
  // undecided state.
  dispatch_->main()->async([weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    self->authorization_->request(ProtectedResource::location, [weak](AuthorizationState state) {
      auto self = weak.lock();
      if (!self) return;
      self->promptShown_ = false;
      // A stored answer has reached the managers through the store already;
      // one that was not stored (nobody could be asked) is told here.
      if (self->currentAuthorization() != state) self->tellManagers(state);
    });
  });
}

void LinuxLocationServices::tellManagers(AuthorizationState state) {
  auto managers = managers_;  // a delegate may make a manager meanwhile
  for (const auto& weak : managers) {
    if (auto manager = weak.lock()) manager->authorizationDidChange(state);
  }
}

}  // namespace vantu::linux_platform
