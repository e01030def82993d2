#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuDeviceLocale": the current locale's language code, "" when it has none.
class DeviceLocaleHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuDeviceLocale";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
