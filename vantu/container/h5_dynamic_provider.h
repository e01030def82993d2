#pragma once
// The process-wide container factory: forwards every request to the host's
// provider delegate. Without one, the plain requests answer no view
// controller and the ones that take an AppType answer
// H5ProviderError::internalError() (code 5); registrations do nothing.

#include <memory>

#include "vantu/container/h5_provider_delegate.h"

namespace vantu {

class H5DynamicProvider : public H5ProviderDelegate {
 public:
  /// The one instance, created on first use with no delegate.
  static H5DynamicProvider& shared();

  /// Replaces the delegate (nullptr removes it); the next request uses it.
  void setupWith(std::shared_ptr<H5ProviderDelegate> providerDelegate);
  const std::shared_ptr<H5ProviderDelegate>& providerDelegate() const { return providerDelegate_; }

  H5ViewControllerResult getH5ViewControllerWith(const Dict& params, const std::string& uniqueAppId,
                                                 AppType appType) override;
  std::shared_ptr<ViewController> getH5ViewControllerWith(const Dict& params, const std::string& uniqueAppId) override;
  H5ViewControllerResult getH5ViewControllerWith(const Dict& params, const Dict& webViewFlags,
                                                 const Dict& containerCustomizationFlags,
                                                 const std::shared_ptr<NavigationController>& navigationController,
                                                 const std::string& uniqueAppId, AppType appType) override;
  std::shared_ptr<ViewController> getH5ViewControllerWith(
      const Dict& params, const Dict& webViewFlags, const Dict& containerCustomizationFlags,
      const std::shared_ptr<NavigationController>& navigationController, const std::string& uniqueAppId) override;
  void registerBridgeBundleWithName(const std::string& name) override;
  void registerHalcyraBridgeBundleWithName(const std::string& name) override;

  /// Testing only: back to the state of a fresh process.
  void resetForTesting();

 private:
  H5DynamicProvider() = default;

  std::shared_ptr<H5ProviderDelegate> providerDelegate_;
};

}  // namespace vantu
