#pragma once
// The host's view-controller provider as a scenario scripts it: it either
// makes a new container screen for every request or answers nothing. Every
// request is recorded as a delegate call of "viewControllerProvider".

#include <memory>
#include <string>

#include "vantu/core/h5_view_controller_provider.h"

namespace vantu::sim {

class SimDevice;

class SimViewControllerProvider : public H5ViewControllerProvider {
 public:
  /// `makesScreens` false: every request is answered with no screen.
  SimViewControllerProvider(SimDevice& device, bool makesScreens) : device_(device), makesScreens_(makesScreens) {}

  /// A new screen named "<uniqueAppId>#<n>" (n counts this provider's
  /// screens from 1), marked as a container of that app and registered
  /// with the device by its name.
  std::shared_ptr<ViewController> viewControllerWith(std::shared_ptr<ViewController> viewController, Dict params,
                                                     Dict customizationParams, Dict webViewFlags,
                                                     std::string uniqueAppId) override;

 private:
  SimDevice& device_;
  bool makesScreens_;
  int made_ = 0;
};

}  // namespace vantu::sim
