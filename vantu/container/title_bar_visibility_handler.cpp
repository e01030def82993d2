#include "vantu/container/title_bar_visibility_handler.h"

#include "vantu/container/vantu_h5_container_customization_constants.h"
#include "vantu/container/vantu_h5_container_customizer.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void TitleBarVisibilityHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) {
    answerFailure(params.callback, "TitleBarVisibilityHandler: Failed to bind params.viewController!");
    return;
  }
  auto visible = params.data.getBool("value");
  if (!visible) {
    answerFailure(params.callback, "TitleBarVisibilityHandler: Failed to bind visibilityStatus value as a boolean!");
    return;
  }
  const Dict flags{
      {rawValue(VantuH5ContainerCustomizationConstants::kVantuH5ContainerTitleBarVisibilityStatus), *visible}};
  VantuH5ContainerCustomizer::customize(*params.viewController, params.viewController->navigationController(), flags);
  params.callback(true);
}

}  // namespace vantu
