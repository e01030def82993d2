#include "vantu/bridges/host/device_manufacturer_handler.h"

#include "vantu/bridges/host/device_info_data_store.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void DeviceManufacturerHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  params.callback(payload::success(DeviceInfoDataStore::createManufacturer()));
}

}  // namespace vantu
