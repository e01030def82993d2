#include "vantu/storage/user_defaults_remove_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {

void UserDefaultsRemoveHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto domain = sandboxDomainFor(params);
  if (!domain) return;
  auto keys = params.data.getStringArray("keys");
  if (!keys || keys->empty()) {
    answerFailure(params.callback, "Nil or empty keys received for delete op");
    return;
  }
  UserDefaultsDataStoreImpl::shared()->removeData(
      std::move(*domain), std::move(*keys),
      [self = weakSelf(this), callback = params.callback](bool success, std::optional<PlatformError> /*error*/) {
        if (!self.lock()) return;
        // No "!" at the end of this one, unlike its siblings.
        Value answer = success ? Value(payload::success(Dict{}))
                               : Value(payload::failure("Failed to delete value against key"));
        answerOnMain(callback, std::move(answer));
      });
}

}  // namespace vantu
