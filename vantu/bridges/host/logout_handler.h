#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuLogout": hands the page's whole "data" to the host's logout.
/// {"data": {"success": true}} on success.
class LogoutHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuLogout";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
