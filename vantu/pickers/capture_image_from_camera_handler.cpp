#include "vantu/pickers/capture_image_from_camera_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/pickers/picker_error.h"
#include "vantu/platform/platform.h"

namespace vantu {

void CaptureImageFromCameraHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);
  if (!platform().application->isImagePickerSourceAvailable(ImagePickerSource::camera)) {
    return answerFailure(params.callback, kCameraUnavailable);
  }
  if (isBridgeBusy()) return answerFailure(params.callback, kBusy);
  if (!isAuthorized(ProtectedResource::camera)) return answerFailure(params.callback, kNotAuthorized);
  setBridgeBusy(true);
  const bool useFrontCamera = params.data.getBool("useFrontCamera").value_or(false);
  imagePicker()->showCamera(*params.viewController, useFrontCamera, resultStep(Source::camera, params.callback));
}

}  // namespace vantu
