#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuDeviceName": the hardware model identifier, e.g. {"data": "iPhone14,5"}.
class DeviceNameHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuDeviceName";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
