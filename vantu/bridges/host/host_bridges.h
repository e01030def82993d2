#pragma once
// The bridges answered by the host, from device facts, or by simple dialogs.

#include "vantu/bridges/host/device_manufacturer_handler.h"
#include "vantu/core/bridge_list.h"

namespace vantu {

using HostBridges = BridgeList<DeviceManufacturerHandler>;

}  // namespace vantu
