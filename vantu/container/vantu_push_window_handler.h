#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuPushWindow": opens the https page "url" of the app "appId" in a new
/// container from the host's view-controller provider and pushes it on the
/// calling screen's navigation stack. The startup map ("params", else
/// "param") goes to the provider with "url" set, and its container and
/// web-view flags also as separate maps. A successful push answers nothing;
/// every failure answers one flat error.
class VantuPushWindowHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuPushWindow";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
