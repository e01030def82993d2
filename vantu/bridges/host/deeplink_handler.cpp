#include "vantu/bridges/host/deeplink_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"

namespace vantu {

void DeeplinkHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto deeplink = params.data.getString("deeplink");
  if (!deeplink) return host::answerFailure(params.callback, host::kInvalidParameter);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->openDeeplink(std::move(*deeplink), host::answerSuccessFlag(params.callback, "Failed Navigation result!"));
}

}  // namespace vantu
