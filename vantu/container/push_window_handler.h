#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "pushWindow": like "vantuPushWindow", but the new page belongs to the
/// calling container's own app (its unique app id, looked up through the
/// screen, its parent and its grandparent) and any URL is accepted. A
/// successful push answers nothing; every failure answers one flat error.
class PushWindowHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "pushWindow";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
