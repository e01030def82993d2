#pragma once
// The view-controller provider of a process with several container stacks:
// the environment holds one provider, so this one hands each push to the
// stack the calling screen is on.

#include <memory>
#include <vector>

#include "platforms/gtk/container_stack.h"

namespace vantu::gtk {

class ContainerDirectory : public H5ViewControllerProvider {
 public:
  void add(const std::shared_ptr<ContainerStack>& stack);
  void remove(const ContainerStack* stack);

  /// The calling screen's stack makes the screen; nothing when no stack
  /// holds the caller.
  std::shared_ptr<ViewController> viewControllerWith(std::shared_ptr<ViewController> viewController, Dict params,
                                                     Dict customizationParams, Dict webViewFlags,
                                                     std::string uniqueAppId) override;

 private:
  std::vector<std::weak_ptr<ContainerStack>> stacks_;
};

}  // namespace vantu::gtk
