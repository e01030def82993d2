#include "vantu/container/renders_above_home_indicator_handler.h"

#include "vantu/container/vantu_h5_container_customization_constants.h"
#include "vantu/container/vantu_h5_container_customizer.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void RendersAboveHomeIndicatorHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) {
    answerFailure(params.callback, "RendersAboveHomeIndicatorHandler: Failed to bind params.viewController!");
    return;
  }
  auto renderAbove = params.data.getBool("value");
  if (!renderAbove) {
    answerFailure(params.callback, "RendersAboveHomeIndicatorHandler: Failed to bind kRendersAboveHomeIndicatorStatus value as a boolean!");
    return;
  }
  const Dict flags{
      {rawValue(VantuH5ContainerCustomizationConstants::kVantuH5ContainerRenderAboveHomeIndicator), *renderAbove}};
  VantuH5ContainerCustomizer::customize(*params.viewController, params.viewController->navigationController(), flags);
  params.callback(true);
}

}  // namespace vantu
