#include "vantu/bridges/host/share_text_and_image_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/bridges/host/share_util.h"
#include "vantu/core/data_url.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/image_decoder.h"
#include "vantu/value/base64.h"

namespace vantu {

std::optional<Image> ShareTextAndImageHandler::imageFromPageString(std::string_view image) {
  if (image.find("data:image") != std::string_view::npos) {
    auto bytes = loadUrlBytes(image);
    if (!bytes) return std::nullopt;
    return decodeImage(*bytes);
  }
  return decodeImage(base64::decodeIgnoringUnknown(image));
}

void ShareTextAndImageHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);
  auto text = params.data.getString("text");
  auto imageText = params.data.getString("image");
  if (!text && !imageText) return answerFailure(params.callback, kNothingPassed);

  std::optional<Image> image;
  if (imageText) {
    image = imageFromPageString(*imageText);
    if (!image) return answerFailure(params.callback, kBadImage);
  }
  ShareUtil::share(std::move(text), std::move(image), *params.viewController, params.callback);
}

}  // namespace vantu
