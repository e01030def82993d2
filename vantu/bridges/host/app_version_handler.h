#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuGetAppVersion": {"data": {"appVersion": the host app's version}}
/// ("" when the bundle does not say).
class AppVersionHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuGetAppVersion";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
