#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuOsVersion": the system version text, e.g. {"data": "17.5"}.
class DeviceOSVersionHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuOsVersion";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
