#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuDeviceData": every device fact at once, read afresh:
/// {"data": {"name", "manufacturer", "os_version", "imei", "locale",
/// "network_type"}} in that order.
class DeviceDataHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuDeviceData";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
