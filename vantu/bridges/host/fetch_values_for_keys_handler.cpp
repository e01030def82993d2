#include "vantu/bridges/host/fetch_values_for_keys_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {
namespace {

constexpr host::ContextMessages kMessages{"FetchValuesForKeys: Unable to get current H5 VC",
                                          "FetchValuesForKeys: Unable to get current H5 Context Listeners"};

}  // namespace

void FetchValuesForKeysHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto delegate = host::hostDelegateFor(params, kMessages);
  if (!delegate) return;
  auto keys = params.data.getStringArray("keys");
  if (!keys) return answerFailure(params.callback, "FetchValuesForKeys: Invalid keys parameter!");
  delegate->fetchValuesForKeys(std::move(*keys), [callback = std::move(params.callback)](
                                                     bool success, std::optional<PlatformError> /*error*/,
                                                     std::optional<Value> value) {
    if (!success) return answerFailure(callback, "FetchValuesForKeys: Failed to get values for keys!");
    callback(payload::success(value ? std::move(*value) : Value(Array{})));
  });
}

}  // namespace vantu
