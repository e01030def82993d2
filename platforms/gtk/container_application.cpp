#include "platforms/gtk/container_application.h"

#ifdef VANTU_HAVE_CAMERA
#include "platforms/camera/camera_session.h"
#endif

namespace vantu::gtk {

ContainerApplication::ContainerApplication([[maybe_unused]] std::shared_ptr<Dispatch> dispatch,
                                           std::function<void()> settingsPage, [[maybe_unused]] std::string cameraClass)
    : LinuxApplication(std::move(settingsPage)) {
#ifdef VANTU_HAVE_CAMERA
  cameras_ = std::make_unique<camera::CameraDirectory>(std::move(dispatch), std::move(cameraClass));
  cameras_->start();
#endif
}

bool ContainerApplication::doIsImagePickerSourceAvailable(ImagePickerSource source) const {
  if (source != ImagePickerSource::camera) return true;
  if (cameraScripted_) return true;
#ifdef VANTU_HAVE_CAMERA
  return !cameraSource_.empty() || !cameras_->cameras().empty();
#else
  return false;
#endif
}

#ifdef VANTU_HAVE_CAMERA
GstElement* ContainerApplication::createCameraSource(ImagePickerController::CameraDevice device,
                                                     std::string& error) const {
  if (!cameraSource_.empty()) return camera::sourceFromDescription(cameraSource_, error);
  GstElement* source = cameras_->createSource(device == ImagePickerController::CameraDevice::front
                                                  ? camera::Facing::front
                                                  : camera::Facing::rear);
  if (!source) error = "no camera is connected";
  return source;
}
#endif

}  // namespace vantu::gtk
