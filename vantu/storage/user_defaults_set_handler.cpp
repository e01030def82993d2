#include "vantu/storage/user_defaults_set_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {

void UserDefaultsSetHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto domain = sandboxDomainFor(params);
  if (!domain) return;
  auto data = params.data.getDict("data");
  // "A dictionary from string to any value": keys only native code can make
  // (integers, booleans) make it another type.
  if (!data || !data->hasOnlyStringKeys()) {
    answerFailure(params.callback, "Failed to bind json object data passed!");
    return;
  }
  UserDefaultsDataStoreImpl::shared()->saveData(
      std::move(*domain), std::move(*data),
      [self = weakSelf(this), callback = params.callback](bool success, std::optional<PlatformError> /*error*/) {
        if (!self.lock()) return;
        Value answer = success ? Value(payload::success(Dict{}))
                               : Value(payload::failure("Failed to set data against key!"));
        answerOnMain(callback, std::move(answer));
      });
}

}  // namespace vantu
