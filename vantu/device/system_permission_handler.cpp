#include "vantu/device/system_permission_handler.h"

#include "vantu/device/permission_helper.h"
#include "vantu/platform/platform.h"

namespace vantu {

void SystemPermissionHandler::getPermissionStatus(const StatusCompletion& completion) {
  switch (standing()) {
    case Standing::granted:
      return completion(permission_status::kGranted);
    case Standing::refused:
    case Standing::unavailable:
      return completion(permission_status::kRefused);
    case Standing::notAsked:
      return completion(permission_status::kNotAsked);
    case Standing::unknown:
      return;
  }
}

void SystemPermissionHandler::requestPermission(const std::shared_ptr<ViewController>& viewController,
                                                RequestCompletion completion) {
  switch (standing()) {
    case Standing::granted:
      return completion(1);
    case Standing::unavailable:
      return completion(0);
    case Standing::refused:
      return PermissionHelper::showOpenSettingsAlert(std::string(settingsMessage()), viewController,
                                                     [completion = std::move(completion)] { completion(0); });
    case Standing::notAsked:
      return askPlatform([completion = std::move(completion)](bool granted) { completion(granted ? 1 : 0); });
    case Standing::unknown:
      return;
  }
}

ResourcePermissionHandler::Standing ResourcePermissionHandler::standing() const {
  const auto& authorization = platform().authorization;
  return authorization ? standingOf(authorization->state(resource_), known_) : Standing::unavailable;
}

void ResourcePermissionHandler::askPlatform(std::function<void(bool granted)> done) {
  platform().authorization->request(resource_, [done = std::move(done)](AuthorizationState state) {
    done(state == AuthorizationState::authorized);
  });
}

SystemPermissionHandler::Standing SystemPermissionHandler::standingOf(AuthorizationState state, KnownStates known) {
  switch (state) {
    case AuthorizationState::authorized:
      return Standing::granted;
    case AuthorizationState::authorizedWhenInUse:
      return known.authorizedWhenInUse ? Standing::granted : Standing::unknown;
    case AuthorizationState::restricted:
      return known.restricted ? Standing::refused : Standing::unknown;
    case AuthorizationState::denied:
      return Standing::refused;
    case AuthorizationState::notDetermined:
      return Standing::notAsked;
    default:
      return Standing::unknown;
  }
}

}  // namespace vantu
