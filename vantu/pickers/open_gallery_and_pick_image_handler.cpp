#include "vantu/pickers/open_gallery_and_pick_image_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/pickers/picker_error.h"
#include "vantu/platform/platform.h"

namespace vantu {

void OpenGalleryAndPickImageHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);
  if (isBridgeBusy()) return answerFailure(params.callback, kBusy);
  if (!isAuthorized(ProtectedResource::photoLibrary)) return answerFailure(params.callback, kNotAuthorized);
  if (!platform().application->isImagePickerSourceAvailable(ImagePickerSource::photoLibrary)) {
    return answerFailure(params.callback, kLibraryUnavailable);
  }
  setBridgeBusy(true);
  imagePicker()->showPhotoLibrary(*params.viewController, resultStep(Source::photoLibrary, params.callback));
}

}  // namespace vantu
