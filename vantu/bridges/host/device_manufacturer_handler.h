#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuDeviceManufacturer": {"data": the device-info store's manufacturer},
/// always "Apple".
class DeviceManufacturerHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuDeviceManufacturer";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
