#include "vantu/bridges/host/fetch_params_against_key_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void FetchParamsAgainstKeyHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto key = params.data.getString("key");
  if (!key) return answerFailure(params.callback, "FetchParamsAgainstKeyHandler: Invalid key parameter!");
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->fetchParamsAgainstKey(
      std::move(*key),
      answerSuccessWithData(params.callback, "FetchParamsAgainstKeyHandler: Failed to get data!", Array{}));
}

}  // namespace vantu
