#include "vantu/storage/user_defaults_get_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {

void UserDefaultsGetHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto domain = sandboxDomainFor(params);
  if (!domain) return;
  auto keys = params.data.getStringArray("keys");
  if (!keys || keys->empty()) {
    answerFailure(params.callback, "Nil or empty keys received for get op");
    return;
  }
  UserDefaultsDataStoreImpl::shared()->getData(
      std::move(*domain), std::move(*keys),
      [callback = params.callback](bool success, std::optional<PlatformError> /*error*/, Dict result) {
        Value answer = success ? Value(std::move(result)) : Value(payload::failure("Failed to get data!"));
        answerOnMain(callback, std::move(answer));
      });
}

}  // namespace vantu
