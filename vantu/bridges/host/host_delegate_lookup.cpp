#include "vantu/bridges/host/host_delegate_lookup.h"

#include "vantu/core/h5_op_error.h"
#include "vantu/core/view_controller_context.h"

namespace vantu::host {

void answerFailure(const H5Callback& callback, std::string_view message) {
  if (callback) callback(payload::flatError(kFailureCode, message));
}

std::shared_ptr<VantuH5Delegate> hostDelegateFor(const H5HandlerInputParams& params, const ContextMessages& messages) {
  if (!params.viewController) {
    answerFailure(params.callback, messages.noViewController);
    return nullptr;
  }
  auto delegate = std::dynamic_pointer_cast<VantuH5Delegate>(getVH5ViewControllerDelegateRecursively(*params.viewController));
  if (!delegate) answerFailure(params.callback, messages.noDelegate);
  return delegate;
}

Dict successWithData(Value value) { return Dict{{"success", true}, {"data", std::move(value)}}; }

DelegateHandler answerSuccessFlag(H5Callback callback, std::string failureMessage) {
  return [callback = std::move(callback), failureMessage = std::move(failureMessage)](
             bool success, std::optional<PlatformError> /*error*/, std::optional<Value> /*value*/) {
    if (!success) return answerFailure(callback, failureMessage);
    if (callback) callback(payload::successFlag());
  };
}

DelegateHandler answerSuccessWithData(H5Callback callback, std::string failureMessage, Value whenAbsent) {
  return [callback = std::move(callback), failureMessage = std::move(failureMessage), whenAbsent = std::move(whenAbsent)](
             bool success, std::optional<PlatformError> /*error*/, std::optional<Value> value) {
    if (!success) return answerFailure(callback, failureMessage);
    if (callback) callback(successWithData(value ? std::move(*value) : whenAbsent));
  };
}

}  // namespace vantu::host
