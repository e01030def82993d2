#include "vantu/bridges/host/device_network_type_handler.h"

#include "vantu/bridges/host/device_info_data_store.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void DeviceNetworkTypeHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  params.callback(payload::success(DeviceInfoDataStore::createDeviceNetworkType()));
}

}  // namespace vantu
