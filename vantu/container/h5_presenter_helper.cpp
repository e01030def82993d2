#include "vantu/container/h5_presenter_helper.h"

#include "vantu/container/h5_dynamic_provider.h"

namespace vantu {

std::shared_ptr<ViewController> H5PresenterHelper::getH5ViewControllerUsingConfig(const H5ProviderConfig& config) {
  auto delegate = H5DynamicProvider::shared().providerDelegate();
  if (!delegate) return nullptr;
  if (!config.shouldCallCustomizationMethod) {
    return delegate->getH5ViewControllerWith(config.params, config.uniqueAppId);
  }
  return delegate->getH5ViewControllerWith(config.params, config.webViewFlags, config.containerCustomizationFlags,
                                           config.navigationController, config.uniqueAppId);
}

}  // namespace vantu
