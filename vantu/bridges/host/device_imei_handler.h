#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuDeviceImei": always {"data": ""}.
class DeviceImeiHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuDeviceImei";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
