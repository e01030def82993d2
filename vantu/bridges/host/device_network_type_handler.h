#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuNetworkType": the network type text ("Wifi", "4G", ...).
class DeviceNetworkTypeHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuNetworkType";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
