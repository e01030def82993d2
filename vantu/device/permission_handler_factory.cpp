#include "vantu/device/permission_handler_factory.h"

#include "vantu/device/permission_handlers.h"

namespace vantu {

PermissionHandlerFactory& PermissionHandlerFactory::shared() {
  static PermissionHandlerFactory instance;
  return instance;
}

template <class Handler>
std::shared_ptr<PermissionHandler> PermissionHandlerFactory::lazily(std::shared_ptr<Handler>& field) {
  if (!field) field = std::make_shared<Handler>();
  return field;
}

std::shared_ptr<PermissionHandler> PermissionHandlerFactory::handler(std::string_view word) {
  std::lock_guard lock(mutex_);
  if (word == "camera") return lazily(cameraPermissionHandler_);
  if (word == "photos" || word == "video") return lazily(photosPermissionHandler_);
  if (word == "location") return lazily(locationPermissionHandler_);
  if (word == "microphone") return lazily(microphonePermissionHandler_);
  if (word == "contacts") return lazily(contactPermissionHandler_);
  if (word == "speech") return lazily(speechRecognitionPermissionHandler_);
  return nullptr;
}

void PermissionHandlerFactory::resetForTesting() {
  std::lock_guard lock(mutex_);
  cameraPermissionHandler_.reset();
  photosPermissionHandler_.reset();
  locationPermissionHandler_.reset();
  microphonePermissionHandler_.reset();
  contactPermissionHandler_.reset();
  speechRecognitionPermissionHandler_.reset();
}

}  // namespace vantu
