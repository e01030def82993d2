#pragma once
// Implemented by the host: builds container view controllers for the
// push-window bridges.

#include <memory>
#include <string>

#include "vantu/platform/object.h"
#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu {

class H5ViewControllerProvider : public virtual Object {
 public:
  virtual std::shared_ptr<ViewController> viewControllerWith(std::shared_ptr<ViewController> viewController,
                                                             Dict params, Dict customizationParams,
                                                             Dict webViewFlags, std::string uniqueAppId) = 0;
};

}  // namespace vantu
