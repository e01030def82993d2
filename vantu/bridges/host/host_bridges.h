#pragma once
// The bridges answered by the host, from device facts, or by simple dialogs.

#include "vantu/bridges/host/alert_handler.h"
#include "vantu/bridges/host/app_info_handler.h"
#include "vantu/bridges/host/app_version_handler.h"
#include "vantu/bridges/host/auth_token_fetch_handler.h"
#include "vantu/bridges/host/deeplink_handler.h"
#include "vantu/bridges/host/device_data_handler.h"
#include "vantu/bridges/host/device_imei_handler.h"
#include "vantu/bridges/host/device_locale_handler.h"
#include "vantu/bridges/host/device_manufacturer_handler.h"
#include "vantu/bridges/host/device_name_handler.h"
#include "vantu/bridges/host/device_network_type_handler.h"
#include "vantu/bridges/host/device_os_version_handler.h"
#include "vantu/bridges/host/fetch_customer_id.h"
#include "vantu/bridges/host/fetch_params_against_key_handler.h"
#include "vantu/bridges/host/fetch_values_for_keys_handler.h"
#include "vantu/bridges/host/login_handler.h"
#include "vantu/bridges/host/logout_handler.h"
#include "vantu/bridges/host/navigate_to_handler.h"
#include "vantu/bridges/host/session_expiry_handler.h"
#include "vantu/bridges/host/share_text_and_image_handler.h"
#include "vantu/bridges/host/share_text_handler.h"
#include "vantu/bridges/host/track_event_handler.h"
#include "vantu/core/bridge_list.h"

namespace vantu {

using HostBridges = BridgeList<DeviceManufacturerHandler,
                               DeviceNameHandler, DeviceOSVersionHandler, DeviceLocaleHandler, DeviceImeiHandler,
                               DeviceNetworkTypeHandler, DeviceDataHandler, AppVersionHandler, AppInfoHandler,
                               DeeplinkHandler, NavigateToHandler, LoginHandler, LogoutHandler,
                               SessionExpiryHandler, AuthTokenFetchHandler, FetchCustomerId,
                               FetchValuesForKeysHandler, FetchParamsAgainstKeyHandler, TrackEventHandler,
                               AlertHandler, ShareTextHandler, ShareTextAndImageHandler>;

}  // namespace vantu
