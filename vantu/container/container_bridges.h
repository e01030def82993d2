#pragma once
// The container bridges: push-window, bars and status strip, web-view settings.

#include "vantu/container/push_window_handler.h"
#include "vantu/container/renders_above_home_indicator_handler.h"
#include "vantu/container/reset_statusbar_background_color_handler.h"
#include "vantu/container/statusbar_background_color_change_handler.h"
#include "vantu/container/title_bar_visibility_handler.h"
#include "vantu/container/vantu_push_window_handler.h"
#include "vantu/container/web_view_settings_customization_handler.h"
#include "vantu/core/bridge_list.h"

namespace vantu {

using ContainerBridges = BridgeList<PushWindowHandler, VantuPushWindowHandler, TitleBarVisibilityHandler,
                                    RendersAboveHomeIndicatorHandler, StatusbarBackgroundColorChangeHandler,
                                    ResetStatusbarBackgroundColorHandler, WebViewSettingsCustomizationHandler>;

}  // namespace vantu
