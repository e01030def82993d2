#include "platforms/common/prompted_location_services.h"

namespace vantu {
namespace {

class PromptedLocationManager : public LocationManager {
 public:
  explicit PromptedLocationManager(std::weak_ptr<PromptedLocationServices> services)
      : services_(std::move(services)) {}

 protected:
  void doRequestWhenInUseAuthorization() override {
    if (auto services = services_.lock()) services->requestWhenInUseAuthorization();
  }
  std::optional<Coordinate> doLocation() const override {
    auto services = services_.lock();
    return services ? services->currentFix() : std::nullopt;
  }

 private:
  std::weak_ptr<PromptedLocationServices> services_;
};

}  // namespace

std::shared_ptr<LocationManager> PromptedLocationServices::doMakeManager() {
  auto manager = std::make_shared<PromptedLocationManager>(weak_from_this());
  std::erase_if(managers_, [](const auto& m) { return m.expired(); });
  managers_.push_back(manager);
  return manager;
}

void PromptedLocationServices::requestWhenInUseAuthorization() {
  if (questionUp_ || authorizationState() != AuthorizationState::notDetermined) return;
  questionUp_ = true;
  dispatch_->main()->async([weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    self->authorization_->request(ProtectedResource::location, [weak](AuthorizationState state) {
      if (auto self = weak.lock()) {
        self->questionUp_ = false;
        self->questionAnswered(state);
      }
    });
  });
}

void PromptedLocationServices::tellManagers(AuthorizationState state) {
  auto managers = managers_;  // a delegate may make a manager meanwhile
  for (const auto& weak : managers) {
    if (auto manager = weak.lock()) manager->authorizationDidChange(state);
  }
}

}  // namespace vantu
