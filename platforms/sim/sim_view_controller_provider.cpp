#include "platforms/sim/sim_view_controller_provider.h"

#include "platforms/sim/sim_device.h"
#include "platforms/sim/sim_ui.h"
#include "vantu/core/view_controller_context.h"

namespace vantu::sim {

std::shared_ptr<ViewController> SimViewControllerProvider::viewControllerWith(
    std::shared_ptr<ViewController> viewController, Dict params, Dict customizationParams, Dict webViewFlags,
    std::string uniqueAppId) {
  device_.recordDelegateCall("viewControllerProvider", "viewControllerWith",
                             Dict{{"viewController", viewController ? Value(describe(viewController.get())) : Value()},
                                  {"params", std::move(params)},
                                  {"customizationParams", std::move(customizationParams)},
                                  {"webViewFlags", std::move(webViewFlags)},
                                  {"uniqueAppId", uniqueAppId}});
  if (!makesScreens_) return nullptr;
  auto screen = std::make_shared<SimViewController>(device_.effects());
  screen->setName(uniqueAppId + "#" + std::to_string(++made_));
  setIsH5(*screen, true);
  setUniqueAppIdentifier(*screen, uniqueAppId);
  device_.addScreen(screen->name(), screen);
  return screen;
}

}  // namespace vantu::sim
