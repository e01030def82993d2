#include "vantu/device/request_permission_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/url.h"
#include "vantu/device/permission_handler_factory.h"

namespace vantu {

void RequestPermissionHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto permission = params.data.getString("permission");
  if (!permission) return answerFailure(params.callback, kNoPermission);
  if (permission->empty()) return answerFailure(params.callback, kEmptyPermission);
  // Lower-cased only: a single word is not split and keeps its spaces.
  std::string word = asciiLowercased(*permission);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);
  auto handler = PermissionHandlerFactory::shared().handler(word);
  if (!handler) return answerFailure(params.callback, kUnhandledPermission);

  handler->requestPermission(params.viewController, [weak = weakSelf(this), callback = std::move(params.callback),
                                                     word](std::int64_t granted) {
    if (!weak.lock()) return;
    callback(Dict{{"data", Dict{{word, granted}}}, {"success", true}, {"authorizedStatus", granted == 1}});
  });
}

}  // namespace vantu
