#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuLogin": hands the page's whole "data" to the host's login.
/// {"data": {"success": true}} on success. The handler holds itself weakly
/// while the host works: once it is gone, the call is answered with nothing.
class LoginHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuLogin";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
