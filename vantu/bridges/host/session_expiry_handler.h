#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// Tells the host that the page's session expired, handing it the page's
/// whole "data". {"data": {"success": true}} on success.
///
/// Pages call it as "vantuHandleSessionExpiry" (kRegisteredName, the name
/// the registry files it under), but its calls are reported to analytics as
/// "vantuLogout", the logout bridge's label. That label is kept on purpose.
class SessionExpiryHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuLogout";
  static constexpr std::string_view kRegisteredName = "vantuHandleSessionExpiry";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
