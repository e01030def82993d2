#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuNavigateTo": asks the host to open a native screen. "navigateTo"
/// (a string) is required; "data" (an object), "clearBackStack" and
/// "finishThis" (booleans) are optional: missing or null means absent and
/// false, any other type is refused like a bad "navigateTo". Arguments are
/// checked before anything else. {"success": true, "data": the host's value}.
class NavigateToHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuNavigateTo";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
