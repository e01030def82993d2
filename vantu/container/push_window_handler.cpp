#include "vantu/container/push_window_handler.h"

#include "vantu/container/push_window_support.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {

void PushWindowHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  push_window::checkAndPush(
      params, {.appId = [](const H5HandlerInputParams& call) {
                 return getUniqueAppIdentifierRecursively(*call.viewController);
               },
               .noAppIdMessage = "Failed to obtain uAId!"});
}

}  // namespace vantu
