#include "vantu/container/h5_dynamic_provider.h"

#include "vantu/container/h5_provider_error.h"

namespace vantu {

H5DynamicProvider& H5DynamicProvider::shared() {
  // Never destroyed, like the environment: the host may still ask for a
  // container while the process exits.
  static H5DynamicProvider* instance = new H5DynamicProvider();
  return *instance;
}

void H5DynamicProvider::setupWith(std::shared_ptr<H5ProviderDelegate> providerDelegate) {
  providerDelegate_ = std::move(providerDelegate);
}

H5ViewControllerResult H5DynamicProvider::getH5ViewControllerWith(const Dict& params, const std::string& uniqueAppId,
                                                                  AppType appType) {
  // Held for the call: the delegate may replace itself while it answers.
  auto delegate = providerDelegate_;
  if (!delegate) return {nullptr, H5ProviderError::internalError().toPlatformError()};
  return delegate->getH5ViewControllerWith(params, uniqueAppId, appType);
}

std::shared_ptr<ViewController> H5DynamicProvider::getH5ViewControllerWith(const Dict& params,
                                                                           const std::string& uniqueAppId) {
  auto delegate = providerDelegate_;
  if (!delegate) return nullptr;
  return delegate->getH5ViewControllerWith(params, uniqueAppId);
}

H5ViewControllerResult H5DynamicProvider::getH5ViewControllerWith(
    const Dict& params, const Dict& webViewFlags, const Dict& containerCustomizationFlags,
    const std::shared_ptr<NavigationController>& navigationController, const std::string& uniqueAppId,
    AppType appType) {
  auto delegate = providerDelegate_;
  if (!delegate) return {nullptr, H5ProviderError::internalError().toPlatformError()};
  return delegate->getH5ViewControllerWith(params, webViewFlags, containerCustomizationFlags, navigationController,
                                           uniqueAppId, appType);
}

std::shared_ptr<ViewController> H5DynamicProvider::getH5ViewControllerWith(
    const Dict& params, const Dict& webViewFlags, const Dict& containerCustomizationFlags,
    const std::shared_ptr<NavigationController>& navigationController, const std::string& uniqueAppId) {
  auto delegate = providerDelegate_;
  if (!delegate) return nullptr;
  return delegate->getH5ViewControllerWith(params, webViewFlags, containerCustomizationFlags, navigationController,
                                           uniqueAppId);
}

void H5DynamicProvider::registerBridgeBundleWithName(const std::string& name) {
  if (auto delegate = providerDelegate_) delegate->registerBridgeBundleWithName(name);
}

void H5DynamicProvider::registerHalcyraBridgeBundleWithName(const std::string& name) {
  if (auto delegate = providerDelegate_) delegate->registerHalcyraBridgeBundleWithName(name);
}

void H5DynamicProvider::resetForTesting() { providerDelegate_.reset(); }

}  // namespace vantu
