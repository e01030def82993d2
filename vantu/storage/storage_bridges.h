#pragma once
// The storage bridges: get, save and remove values in the page's own store.

#include "vantu/core/bridge_list.h"
#include "vantu/storage/user_defaults_get_handler.h"
#include "vantu/storage/user_defaults_remove_handler.h"
#include "vantu/storage/user_defaults_set_handler.h"

namespace vantu {

using StorageBridges = BridgeList<UserDefaultsGetHandler, UserDefaultsSetHandler, UserDefaultsRemoveHandler>;

}  // namespace vantu
