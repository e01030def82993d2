#include "vantu/device/permission_handlers.h"

#include "vantu/platform/platform.h"

namespace vantu {

SystemPermissionHandler::Standing PhotosPermissionHandler::standing() const {
  if (!platform().application->isImagePickerSourceAvailable(ImagePickerSource::photoLibrary)) return Standing::granted;
  return ResourcePermissionHandler::standing();
}

SystemPermissionHandler::Standing LocationPermissionHandler::standing() const {
  const auto& services = platform().locationServices;
  if (!services) return Standing::unavailable;
  switch (services->authorizationState()) {
    case AuthorizationState::authorized:
    case AuthorizationState::authorizedWhenInUse:
      return Standing::granted;
    case AuthorizationState::restricted:
    case AuthorizationState::denied:
      return Standing::refused;
    case AuthorizationState::notDetermined:
      return Standing::notAsked;
    default:
      return Standing::unknown;
  }
}

void LocationPermissionHandler::askPlatform(std::function<void(bool granted)> done) {
  if (!locPermRequester_) locPermRequester_ = std::make_shared<LocationPermissionRequester>();
  locPermRequester_->requestAuthorization(std::move(done));
}

SystemPermissionHandler::Standing MicrophonePermissionHandler::standingOf(AuthorizationState state) const {
  switch (state) {
    case AuthorizationState::authorized:
      return Standing::granted;
    case AuthorizationState::denied:
      return Standing::refused;
    case AuthorizationState::notDetermined:
      return Standing::notAsked;
    default:
      return Standing::unknown;
  }
}

}  // namespace vantu
