#include "vantu/bridges/host/share_text_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/bridges/host/share_util.h"

namespace vantu {

void ShareTextHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto text = params.data.getString("text");
  if (!text) return host::answerFailure(params.callback, kInvalidText);
  if (!params.viewController) return host::answerFailure(params.callback, kNoViewController);
  ShareUtil::share(std::move(text), std::nullopt, *params.viewController, params.callback);
}

}  // namespace vantu
