#pragma once
// The device-capability bridges: permissions, location and device-owner
// authentication.

#include "vantu/core/bridge_list.h"
#include "vantu/device/address_geo_code_handler.h"
#include "vantu/device/check_permission_handler.h"
#include "vantu/device/get_location_handler.h"
#include "vantu/device/local_authentication_handler.h"
#include "vantu/device/request_permission_handler.h"

namespace vantu {

using DeviceBridges = BridgeList<CheckPermissionHandler, RequestPermissionHandler, GetLocationHandler,
                                 AddressGeoCodeHandler, LocalAuthenticationHandler>;

}  // namespace vantu
