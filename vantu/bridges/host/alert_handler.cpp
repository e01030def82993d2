#include "vantu/bridges/host/alert_handler.h"

#include <memory>

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/platform/alert_controller.h"

namespace vantu {

std::vector<std::string> AlertHandler::buttonTitles(std::string_view type, const Dict& data) {
  if (type == "custom") {
    if (auto buttons = data.getStringArray("buttons"); buttons && !buttons->empty()) return std::move(*buttons);
  }
  return {std::string(kDefaultButton)};
}

void AlertHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto message = params.data.getString("message");
  if (!message) return answerFailure(params.callback, kNoMessage);
  auto type = params.data.getString("type");
  if (!type) return answerFailure(params.callback, kNoType);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);

  auto alert = std::make_shared<AlertController>(params.data.getString("title").value_or(""), std::move(*message),
                                                 AlertController::Style::Alert);
  // Every button answers the same; which one was tapped is not reported.
  // The alert is held weakly: it owns its actions, and the presenter owns it.
  auto onTap = [callback = std::move(params.callback),
                weakAlert = std::weak_ptr<AlertController>(alert)](const AlertAction&) {
    callback(payload::successFlag());
    if (auto shown = weakAlert.lock()) shown->dismiss(true);
  };
  for (auto& title : buttonTitles(*type, params.data)) {
    alert->addAction(AlertAction(std::move(title), AlertAction::Style::Default, onTap));
  }
  params.viewController->present(alert, true);
}

}  // namespace vantu
