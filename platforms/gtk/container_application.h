#pragma once
// The container's application object. Its image picker has the photo
// library and the saved-photos album (both a file chooser over the user's
// pictures) and, when a camera is listed, the camera: the cameras come from
// GStreamer's device monitor (platforms/camera), listed in the background
// from start-up, so until that listing is in the camera counts as missing.
// A replacement camera source (a GStreamer pipeline description) or a
// picker script answering the camera makes the camera available without
// one.

#include <memory>
#include <string>

#include "platforms/linux/linux_application.h"
#include "vantu/platform/dispatch.h"
#include "vantu/platform/image_picker_controller.h"

#ifdef VANTU_HAVE_CAMERA
#include "platforms/camera/camera_directory.h"
#endif

namespace vantu::gtk {

class ContainerApplication : public linux_platform::LinuxApplication {
 public:
  /// Lists the cameras (devices of `cameraClass`) when built with camera
  /// support; `settingsPage` opens the app's settings page.
  explicit ContainerApplication(std::shared_ptr<Dispatch> dispatch, std::function<void()> settingsPage = {},
                                std::string cameraClass = "Video/Source");

  /// Camera pictures come from this pipeline description ("videotestsrc",
  /// "v4l2src device=/dev/video2") in place of a listed camera; empty: the
  /// listed cameras.
  void setCameraSource(std::string description) { cameraSource_ = std::move(description); }
  const std::string& cameraSource() const { return cameraSource_; }
  /// A picker script answers the camera: it counts as available.
  void setCameraScripted(bool scripted) { cameraScripted_ = scripted; }

#ifdef VANTU_HAVE_CAMERA
  /// A new source element for a camera picker's device choice, or nullptr
  /// with the reason in `error`. The caller owns it.
  GstElement* createCameraSource(ImagePickerController::CameraDevice device, std::string& error) const;
  const camera::CameraDirectory& cameras() const { return *cameras_; }
#endif

 protected:
  bool doIsImagePickerSourceAvailable(ImagePickerSource source) const override;

 private:
  std::string cameraSource_;
  bool cameraScripted_ = false;
#ifdef VANTU_HAVE_CAMERA
  std::unique_ptr<camera::CameraDirectory> cameras_;
#endif
};

}  // namespace vantu::gtk
