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
  return standingOf(services->authorizationState(), {.authorizedWhenInUse = true});
}

void LocationPermissionHandler::askPlatform(std::function<void(bool granted)> done) {
  if (!locPermRequester_) locPermRequester_ = std::make_shared<LocationPermissionRequester>();
  locPermRequester_->requestAuthorization(std::move(done));
}

}  // namespace vantu
