#include "vantu/pickers/base_image_pick_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/pickers/image_pick_post_processor.h"
#include "vantu/pickers/picker_error.h"
#include "vantu/platform/platform.h"

namespace vantu {

BaseImagePickHandler::BaseImagePickHandler()
    : lockingQueue_(platform().dispatch->makeSerialQueue(std::string(kLockingQueueLabel))),
      imagePicker_(std::make_shared<ImagePicker>()) {}

bool BaseImagePickHandler::isAuthorized(ProtectedResource resource) {
  const auto& authorization = platform().authorization;
  return authorization && authorization->state(resource) == AuthorizationState::authorized;
}

void BaseImagePickHandler::setBridgeBusy(bool busy) {
  lockingQueue_->sync([this, busy] { bridgeBusy_ = busy; });
}

bool BaseImagePickHandler::isBridgeBusy() {
  bool busy = false;
  lockingQueue_->sync([this, &busy] { busy = bridgeBusy_; });
  return busy;
}

ImagePicker::Handler BaseImagePickHandler::resultStep(Source source, H5Callback callback) {
  return [weak = weakSelf(this), source, callback = std::move(callback)](
             bool success, std::optional<PlatformError> error, std::optional<ImagePicker::Info> info) {
    auto self = weak.lock();
    if (!self) return;
    self->answerResult(source, success, error, info, callback);
    self->setBridgeBusy(false);
  };
}

void BaseImagePickHandler::answerResult(Source source, bool success, const std::optional<PlatformError>& error,
                                        const std::optional<ImagePicker::Info>& info, const H5Callback& callback) {
  if (!success) return answerFailure(callback, error ? error->localizedDescription : kPickFailed);
  if (!info) return answerFailure(callback, error ? error->localizedDescription : kInfoNil);

  auto original = info->find(rawValue(ImagePickerInfoKey::originalImage));
  const auto* image = original == info->end() ? nullptr : std::get_if<std::shared_ptr<const Image>>(&original->second);
  if (!image || !*image) return answerFailure(callback, kNoAsset);

  auto result = source == Source::camera
                    ? ImagePickPostProcessor::processCameraCapture(**image, platform().device->secondsSince1970())
                    : ImagePickPostProcessor::processLibraryPick(*info);
  for (const auto* failure : {&result.imageNameError, &result.imageTypeError, &result.imageSizeError}) {
    if (*failure) return answerFailure(callback, (*failure)->localizedDescription);
  }
  Dict meta;
  if (result.imageName) meta.set("imageName", std::move(*result.imageName));
  if (result.imageType) meta.set("imageType", std::move(*result.imageType));
  if (result.imageSize) meta.set("imageSize", *result.imageSize);
  Dict data;  // built by moves: the text is the whole image
  data.set("base64", std::move(result.base64).value_or(""));
  data.set("meta", std::move(meta));
  callback(payload::success(std::move(data)));
}

}  // namespace vantu
