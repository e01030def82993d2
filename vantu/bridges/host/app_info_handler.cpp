#include "vantu/bridges/host/app_info_handler.h"

#include "vantu/core/h5_op_error.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/core/version_util.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {

void AppInfoHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  Dict info{{"appVersion", VersionUtil::getAppVersion()}, {"h5Version", VersionUtil::getSDKVersion()}};

  std::shared_ptr<VantuH5Delegate> delegate;
  if (params.viewController) {
    delegate = std::dynamic_pointer_cast<VantuH5Delegate>(getVH5ViewControllerDelegateRecursively(*params.viewController));
  }
  if (!delegate) {
    params.callback(info);
    return;
  }
  // Answered on whatever thread the host calls back on.
  delegate->getAppInfo([info, callback = params.callback](bool success, std::optional<PlatformError> error,
                                                          std::optional<Value> value) mutable {
    if (success && !error && value && value->isDict()) {
      info.set(kHostInfoKey, std::move(*value));
      callback(H5OpErrorUtil::successResponse(std::move(info)));
    } else {
      callback(info);
    }
  });
}

}  // namespace vantu
