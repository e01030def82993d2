#include "vantu/bridges/host/fetch_customer_id.h"

#include "vantu/bridges/host/host_delegate_lookup.h"

namespace vantu {

void FetchCustomerId::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->getCustomerId([callback = std::move(params.callback)](bool success, std::optional<PlatformError> /*error*/,
                                                                  std::optional<Value> value) {
    if (!success) return host::answerFailure(callback, "failed to fetch customer id!");
    if (callback) callback(value ? std::move(*value) : Value());
  });
}

}  // namespace vantu
