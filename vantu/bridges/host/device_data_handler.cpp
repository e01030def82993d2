#include "vantu/bridges/host/device_data_handler.h"

#include "vantu/bridges/host/device_info_data_store.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void DeviceDataHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  Dict facts{
      {"name", DeviceInfoDataStore::createDeviceName()},
      {"manufacturer", DeviceInfoDataStore::createManufacturer()},
      {"os_version", DeviceInfoDataStore::createDeviceOSVersion()},
      {"imei", DeviceInfoDataStore::createDeviceImeiType()},
      {"locale", DeviceInfoDataStore::createDeviceLocale()},
      {"network_type", DeviceInfoDataStore::createDeviceNetworkType()},
  };
  params.callback(H5OpErrorUtil::successResponse(std::move(facts)));
}

}  // namespace vantu
