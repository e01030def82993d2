#include "vantu/bridges/host/app_version_handler.h"

#include "vantu/core/h5_op_error.h"
#include "vantu/core/version_util.h"

namespace vantu {

void AppVersionHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  params.callback(H5OpErrorUtil::successResponse(Dict{{"appVersion", VersionUtil::getAppVersion()}}));
}

}  // namespace vantu
