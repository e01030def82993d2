#include "vantu/bridges/host/auth_token_fetch_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/laizaxlu_constants.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {

void AuthTokenFetchHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;

  Dict request = std::move(params.data);
  const Key callerKey(LaizaxluConstants::uAidKeyForAuthTokenAccess);
  if (auto caller = getUniqueAppIdentifierRecursively(*params.viewController)) {
    request.set(callerKey, std::move(*caller));
  } else {
    request.erase(callerKey);
  }

  delegate->fetchAuthToken(std::move(request), [callback = std::move(params.callback)](
                                                   bool success, std::optional<PlatformError> /*error*/,
                                                   std::optional<Value> value) {
    if (value) {
      const Dict* tokens = value->asDict();
      if (tokens && tokens->hasOnlyStringKeys()) callback(*tokens);
    }
    if (!success) return answerFailure(callback, "failed to fetch access token!");
    callback(payload::successWithData(value ? std::move(*value) : Value()));
  });
}

}  // namespace vantu
