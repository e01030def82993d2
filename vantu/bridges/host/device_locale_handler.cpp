#include "vantu/bridges/host/device_locale_handler.h"

#include "vantu/bridges/host/device_info_data_store.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void DeviceLocaleHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  params.callback(payload::success(DeviceInfoDataStore::createDeviceLocale()));
}

}  // namespace vantu
