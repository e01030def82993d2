#pragma once
// Turns a config into a container view controller through the installed
// provider delegate. It checks no whitelist, passes no AppType and applies
// none of the config's presentation options: the presenter that shows the
// result does that.

#include <memory>

#include "vantu/container/h5_provider_config.h"

namespace vantu {

class H5PresenterHelper {
 public:
  /// No delegate installed: nothing. Otherwise the delegate's plain request
  /// or, when `shouldCallCustomizationMethod`, its request with flags.
  static std::shared_ptr<ViewController> getH5ViewControllerUsingConfig(const H5ProviderConfig& config);
};

}  // namespace vantu
