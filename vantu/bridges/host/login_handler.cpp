#include "vantu/bridges/host/login_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void LoginHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  auto answer = answerSuccessFlag(params.callback, "failed to login!");
  delegate->login(std::move(params.data), [self = weakSelf(this), answer = std::move(answer)](
                                              bool success, std::optional<PlatformError> error, std::optional<Value> value) {
    if (!self.lock()) return;
    answer(success, std::move(error), std::move(value));
  });
}

}  // namespace vantu
