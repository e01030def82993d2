#pragma once
// What the host implements to build container view controllers. The
// library keeps the host's delegate in H5DynamicProvider.

#include <memory>
#include <optional>
#include <string>

#include "vantu/core/app_type.h"
#include "vantu/platform/object.h"
#include "vantu/platform/platform_error.h"
#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu {

/// A view controller or the reason there is none (one of the two is set).
struct H5ViewControllerResult {
  std::shared_ptr<ViewController> viewController;
  std::optional<PlatformError> error;
};

class H5ProviderDelegate : public virtual Object {
 public:
  virtual H5ViewControllerResult getH5ViewControllerWith(const Dict& params, const std::string& uniqueAppId,
                                                         AppType appType) = 0;
  virtual std::shared_ptr<ViewController> getH5ViewControllerWith(const Dict& params,
                                                                  const std::string& uniqueAppId) = 0;
  virtual H5ViewControllerResult getH5ViewControllerWith(
      const Dict& params, const Dict& webViewFlags, const Dict& containerCustomizationFlags,
      const std::shared_ptr<NavigationController>& navigationController, const std::string& uniqueAppId,
      AppType appType) = 0;
  virtual std::shared_ptr<ViewController> getH5ViewControllerWith(
      const Dict& params, const Dict& webViewFlags, const Dict& containerCustomizationFlags,
      const std::shared_ptr<NavigationController>& navigationController, const std::string& uniqueAppId) = 0;
  /// Registers a named bundle of bridges in the host's container.
  virtual void registerBridgeBundleWithName(const std::string& name) = 0;
  /// The same for the in-house container.
  virtual void registerHalcyraBridgeBundleWithName(const std::string& name) = 0;
};

}  // namespace vantu
