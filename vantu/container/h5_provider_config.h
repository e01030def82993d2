#pragma once
// A container request together with how to present the result. Made by the
// host's screens and handed to H5PresenterHelper or to an H5Presenter.

#include <memory>
#include <optional>
#include <string>

#include "vantu/platform/geometry.h"
#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu {

class H5ProviderConfig {
 public:
  /// A plain request: `shouldCallCustomizationMethod` stays false.
  H5ProviderConfig(Dict params, std::string uniqueAppId, std::shared_ptr<Object> vh5VCDelegate);
  /// A request with flags: sets `shouldCallCustomizationMethod` to true.
  H5ProviderConfig(Dict params, std::string uniqueAppId, Dict webViewFlags, Dict containerCustomizationFlags,
                   std::shared_ptr<NavigationController> navigationController,
                   std::shared_ptr<Object> vh5VCDelegate);

  /// In order: hide the tab bar of the view controller's tab bar controller,
  /// set hides-bottom-bar-when-pushed, hide the navigation bar of its
  /// navigation controller, set its root view's background colour; each only
  /// when asked for. Nothing is ever shown again or cleared.
  void applyConfigurationsOn(ViewController& viewController) const;

  /// Startup parameters, keys from StartupParams.
  Dict params;
  std::string uniqueAppId;
  /// Web-view settings and bar settings for the host's container.
  Dict webViewFlags;
  Dict containerCustomizationFlags;
  /// Where the host should show the container.
  std::shared_ptr<NavigationController> navigationController;
  /// Ask the provider with flags (true) or with the plain request (false).
  bool shouldCallCustomizationMethod = false;
  /// To be installed as the container's VH5ViewControllerDelegate.
  std::shared_ptr<Object> vh5ViewControllerDelegate;
  bool hideTabBar = false;
  bool hideBottomBar = false;
  bool hideNavigationBar = false;
  std::optional<Color> bgColor;
};

}  // namespace vantu
