#pragma once
// The host's providers, handed to the environment at start-up. Read-only
// once built and shared by reference.

#include <memory>

#include "vantu/core/h5_location_data_provider.h"
#include "vantu/core/h5_view_controller_provider.h"
#include "vantu/core/vantu_h5_delegate.h"

namespace vantu {

class H5DataProviders {
 public:
  H5DataProviders(std::shared_ptr<H5ViewControllerProvider> viewControllerProvider,
                  std::shared_ptr<H5LocationDataProvider> locationDataProvider,
                  std::shared_ptr<VantuH5Delegate> h5Delegate)
      : viewControllerProvider_(std::move(viewControllerProvider)),
        locationDataProvider_(std::move(locationDataProvider)),
        h5Delegate_(std::move(h5Delegate)) {}

  const std::shared_ptr<H5ViewControllerProvider>& viewControllerProvider() const { return viewControllerProvider_; }
  const std::shared_ptr<H5LocationDataProvider>& locationDataProvider() const { return locationDataProvider_; }
  const std::shared_ptr<VantuH5Delegate>& h5Delegate() const { return h5Delegate_; }

 private:
  std::shared_ptr<H5ViewControllerProvider> viewControllerProvider_;
  std::shared_ptr<H5LocationDataProvider> locationDataProvider_;
  std::shared_ptr<VantuH5Delegate> h5Delegate_;
};

}  // namespace vantu
