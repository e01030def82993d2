#include "vantu/container/h5_provider_config.h"

#include "vantu/core/fatal.h"

namespace vantu {

H5ProviderConfig::H5ProviderConfig(Dict params, std::string uniqueAppId, std::shared_ptr<Object> vh5VCDelegate)
    : params(std::move(params)),
      uniqueAppId(std::move(uniqueAppId)),
      vh5ViewControllerDelegate(std::move(vh5VCDelegate)) {}

H5ProviderConfig::H5ProviderConfig(Dict params, std::string uniqueAppId, Dict webViewFlags,
                                   Dict containerCustomizationFlags,
                                   std::shared_ptr<NavigationController> navigationController,
                                   std::shared_ptr<Object> vh5VCDelegate)
    : params(std::move(params)),
      uniqueAppId(std::move(uniqueAppId)),
      webViewFlags(std::move(webViewFlags)),
      containerCustomizationFlags(std::move(containerCustomizationFlags)),
      navigationController(std::move(navigationController)),
      shouldCallCustomizationMethod(true),
      vh5ViewControllerDelegate(std::move(vh5VCDelegate)) {}

void H5ProviderConfig::applyConfigurationsOn(ViewController& viewController) const {
  if (hideTabBar) {
    if (auto tabBarController = viewController.tabBarController()) {
      if (auto tabBar = tabBarController->tabBar()) tabBar->setHidden(true);
    }
  }
  if (hideBottomBar) viewController.setHidesBottomBarWhenPushed(true);
  if (hideNavigationBar) {
    if (auto navigation = viewController.navigationController()) {
      if (auto bar = navigation->navigationBar()) bar->setHidden(true);
    }
  }
  if (bgColor) {
    auto root = viewController.view();
    if (!root) fatalError("H5ProviderConfig.applyConfigurationsOn: the view controller has no root view");
    root->setBackgroundColor(*bgColor);
  }
}

}  // namespace vantu
