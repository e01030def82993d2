#pragma once
// What the two push-window bridges share: the order of their checks and
// their failure answers, binding the startup map, finding the navigation
// controller, splitting out the flags and asking the host's view-controller
// provider for the screen to push.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/core/h5_handler_input_params.h"
#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu::push_window {

inline constexpr std::string_view kNoProviderResult =
    "Provider was nil or it returned nil result for view controller to push";

/// `data["params"]` as a map with string keys, else `data["param"]` the same
/// way; nothing when neither is one.
std::optional<Dict> bindStartupParams(const Dict& data);

/// The screen's own navigation controller, else its parent's.
std::shared_ptr<NavigationController> navigationControllerFor(const ViewController& viewController);

/// The startup map's entries under a container flag key and under a web-view
/// flag key, each in the map's order. The map itself is left as it is.
struct SplitFlags {
  Dict containerFlags;
  Dict webViewFlags;
};
SplitFlags splitFlags(const Dict& startupParams);

/// Asks the environment's view-controller provider for the screen to push,
/// with a copy of the startup map whose "url" is `url`, and pushes it
/// (animated) on `navigationController`. False when there is no provider or
/// it gave no screen; nothing is pushed then.
bool pushFromProvider(const std::shared_ptr<ViewController>& caller, NavigationController& navigationController,
                      const std::string& url, const Dict& startupParams, const std::string& uniqueAppId);

/// Where the two bridges differ: the URLs they take and where the new page's
/// app identifier comes from.
struct Rules {
  /// The message refusing `url`; nothing takes it. Null takes every URL.
  std::optional<std::string_view> (*refuseUrl)(const std::string& url) = nullptr;
  /// The new page's app identifier, asked once the call has a view
  /// controller; nothing fails the call with `noAppIdMessage`.
  std::optional<std::string> (*appId)(const H5HandlerInputParams& params) = nullptr;
  std::string_view noAppIdMessage;
};

/// Checks the call in order (view controller, "url", the URL rule, the
/// startup map, the navigation controller, the app identifier) and pushes
/// the provider's screen. The first failure answers the flat error 2 with
/// its message and stops; a push answers nothing.
void checkAndPush(const H5HandlerInputParams& params, const Rules& rules);

}  // namespace vantu::push_window
