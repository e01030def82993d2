#include "vantu/bridges/host/session_expiry_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void SessionExpiryHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->handleSessionExpiry(std::move(params.data),
                                answerSuccessFlag(params.callback, "failed to handle session expiry!"));
}

}  // namespace vantu
