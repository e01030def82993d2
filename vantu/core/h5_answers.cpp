#include "vantu/core/h5_answers.h"

#include "vantu/core/h5_op_error.h"

namespace vantu {

void answerFailure(const H5Callback& callback, std::string_view message) { callback(payload::failure(message)); }

DelegateHandler answerSuccessFlag(H5Callback callback, std::string failureMessage) {
  return [callback = std::move(callback), failureMessage = std::move(failureMessage)](
             bool success, std::optional<PlatformError> /*error*/, std::optional<Value> /*value*/) {
    callback(success ? payload::successFlag() : payload::failure(failureMessage));
  };
}

DelegateHandler answerSuccessWithData(H5Callback callback, std::string failureMessage, Value whenAbsent) {
  return [callback = std::move(callback), failureMessage = std::move(failureMessage), whenAbsent = std::move(whenAbsent)](
             bool success, std::optional<PlatformError> /*error*/, std::optional<Value> value) {
    callback(success ? payload::successWithData(value ? std::move(*value) : whenAbsent)
                     : payload::failure(failureMessage));
  };
}

}  // namespace vantu
