#pragma once
// What a host-side presenter offers to show a container. The library
// declares it for hosts to implement; it has no implementation of its own.

#include <memory>

#include "vantu/container/h5_provider_config.h"
#include "vantu/container/h5_provider_delegate.h"

namespace vantu {

class H5PresenterProtocol : public virtual Object {
 public:
  virtual H5ViewControllerResult showH5ViewControllerAddAsChild(const H5ProviderConfig& config,
                                                                const std::shared_ptr<ViewController>& parentVC) = 0;
  virtual H5ViewControllerResult showH5ViewControllerAddAsChildVC(const H5ProviderConfig& config,
                                                                  const std::shared_ptr<ViewController>& parentVC) = 0;
  virtual H5ViewControllerResult showH5ViewControllerPush(const H5ProviderConfig& config, bool byPopingCurrentToRoot,
                                                          bool animated) = 0;
  virtual H5ViewControllerResult showH5ViewControllerPushByRemovingLast(
      const H5ProviderConfig& config, const std::shared_ptr<ViewController>& parentVC, bool animated) = 0;
  virtual H5ViewControllerResult showH5ViewControllerPushOnNavigation(
      const H5ProviderConfig& config, const std::shared_ptr<NavigationController>& navVC, bool animated) = 0;
};

}  // namespace vantu
