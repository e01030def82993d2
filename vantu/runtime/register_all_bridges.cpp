#include "vantu/bridges/host/host_bridges.h"
#include "vantu/container/container_bridges.h"
#include "vantu/device/device_bridges.h"
#include "vantu/net/net_bridges.h"
#include "vantu/pickers/picker_bridges.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/storage/storage_bridges.h"

namespace vantu {

void registerAllBridges(BridgeRegistry& registry) {
  registry.addAll(HostBridges{});
  registry.addAll(ContainerBridges{});
  registry.addAll(StorageBridges{});
  registry.addAll(DeviceBridges{});
  registry.addAll(NetBridges{});
  registry.addAll(PickerBridges{});
}

}  // namespace vantu
