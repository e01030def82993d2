#include "vantu/bridges/host/logout_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void LogoutHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->logout(std::move(params.data), answerSuccessFlag(params.callback, "failed to logout!"));
}

}  // namespace vantu
