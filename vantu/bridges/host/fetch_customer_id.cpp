#include "vantu/bridges/host/fetch_customer_id.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {

void FetchCustomerId::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->getCustomerId([callback = std::move(params.callback)](bool success, std::optional<PlatformError> /*error*/,
                                                                  std::optional<Value> value) {
    if (!success) return answerFailure(callback, "failed to fetch customer id!");
    callback(value ? std::move(*value) : Value());
  });
}

}  // namespace vantu
