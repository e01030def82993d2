#include "vantu/bridges/host/deeplink_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void DeeplinkHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto deeplink = params.data.getString("deeplink");
  if (!deeplink) return answerFailure(params.callback, host::kInvalidParameter);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->openDeeplink(std::move(*deeplink), answerSuccessFlag(params.callback, "Failed Navigation result!"));
}

}  // namespace vantu
