#pragma once
// The container bridges: push-window, bars and status strip, web-view settings.

#include "vantu/core/bridge_list.h"

namespace vantu {

using ContainerBridges = BridgeList<>;

}  // namespace vantu
