#include "vantu/container/vantu_push_window_handler.h"

#include "vantu/container/push_window_support.h"

namespace vantu {

void VantuPushWindowHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  push_window::checkAndPush(
      params,
      {.refuseUrl = [](const std::string& url) -> std::optional<std::string_view> {
         // A plain substring test, as pages have always been checked.
         if (url.find("https") == std::string::npos) return "VantuPushWindow only supports https urls.";
         return std::nullopt;
       },
       .appId = [](const H5HandlerInputParams& call) { return call.data.getString("appId"); },
       .noAppIdMessage = "invalid parameters: no uniqueId could be bound in data"});
}

}  // namespace vantu
