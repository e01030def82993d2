#include "vantu/container/reset_statusbar_background_color_handler.h"

#include "vantu/container/vantu_h5_container_customization_constants.h"
#include "vantu/container/vantu_h5_container_customizer.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void ResetStatusbarBackgroundColorHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) {
    // The title-bar bridge's text, kept as pages know it.
    answerFailure(params.callback, "TitleBarVisibilityHandler: Failed to bind params.viewController!");
    return;
  }
  const Dict flags{
      {rawValue(VantuH5ContainerCustomizationConstants::kVantuH5ContainerResetStatusbarBackgroundColor), true}};
  VantuH5ContainerCustomizer::customize(*params.viewController, params.viewController->navigationController(), flags);
  params.callback(true);
}

}  // namespace vantu
