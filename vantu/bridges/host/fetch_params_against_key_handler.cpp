#include "vantu/bridges/host/fetch_params_against_key_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"

namespace vantu {

void FetchParamsAgainstKeyHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto key = params.data.getString("key");
  if (!key) return host::answerFailure(params.callback, "FetchParamsAgainstKeyHandler: Invalid key parameter!");
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->fetchParamsAgainstKey(
      std::move(*key),
      host::answerSuccessWithData(params.callback, "FetchParamsAgainstKeyHandler: Failed to get data!", Array{}));
}

}  // namespace vantu
