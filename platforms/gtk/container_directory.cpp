#include "platforms/gtk/container_directory.h"

#include <algorithm>

namespace vantu::gtk {

void ContainerDirectory::add(const std::shared_ptr<ContainerStack>& stack) { stacks_.push_back(stack); }

void ContainerDirectory::remove(const ContainerStack* stack) {
  std::erase_if(stacks_, [stack](const std::weak_ptr<ContainerStack>& entry) {
    auto held = entry.lock();
    return !held || held.get() == stack;
  });
}

std::shared_ptr<ViewController> ContainerDirectory::viewControllerWith(std::shared_ptr<ViewController> viewController,
                                                                       Dict params, Dict customizationParams,
                                                                       Dict webViewFlags, std::string uniqueAppId) {
  if (!viewController) return nullptr;
  for (const auto& entry : stacks_) {
    auto stack = entry.lock();
    if (stack && stack->owns(*viewController)) {
      return stack->viewControllerWith(std::move(viewController), std::move(params), std::move(customizationParams),
                                       std::move(webViewFlags), std::move(uniqueAppId));
    }
  }
  return nullptr;
}

}  // namespace vantu::gtk
