#include "vantu/container/statusbar_background_color_change_handler.h"

#include "vantu/container/vantu_h5_container_customization_constants.h"
#include "vantu/container/vantu_h5_container_customizer.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void StatusbarBackgroundColorChangeHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) {
    answerFailure(params.callback, "StatusbarBackgroundColorChangeHandler: Failed to bind params.viewController!");
    return;
  }
  auto color = params.data.getString("color");
  if (!color) {
    answerFailure(params.callback, "StatusbarBackgroundColorChangeHandler: Failed to bind color hex value as a string!");
    return;
  }
  const Dict flags{
      {rawValue(VantuH5ContainerCustomizationConstants::kVantuH5ContainerStatusbarBackgroundColor), *color}};
  VantuH5ContainerCustomizer::customize(*params.viewController, params.viewController->navigationController(), flags);
  params.callback(true);
}

}  // namespace vantu
