#include "vantu/core/h5_base_handler.h"

#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/core/version_util.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {

void H5BaseHandler::handleWith(H5HandlerInputParams /*params*/) {}

void H5BaseHandler::trackData(std::string_view bridgeName, const H5HandlerInputParams& params) {
  if (!params.viewController) return;
  auto delegate = std::dynamic_pointer_cast<VantuH5Delegate>(getVH5ViewControllerDelegateRecursively(*params.viewController));
  if (!delegate) return;
  Dict event{
      {"event", "custom_event"},
      {"event_action", "Bridge Analytics"},
      {"event_label", bridgeName},
      {"event_label2", VersionUtil::kSDKVersion},
      {"vertical_name", "mini_app"},
      {"event_category", getUniqueAppIdentifierRecursively(*params.viewController).value_or("")},
  };
  delegate->trackCustomEventFor(std::move(event), [](bool, std::optional<PlatformError>, std::optional<Value>) {});
}

}  // namespace vantu
