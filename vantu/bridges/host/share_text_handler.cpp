#include "vantu/bridges/host/share_text_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/bridges/host/share_util.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void ShareTextHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto text = params.data.getString("text");
  if (!text) return answerFailure(params.callback, kInvalidText);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);
  ShareUtil::share(std::move(text), std::nullopt, *params.viewController, params.callback);
}

}  // namespace vantu
