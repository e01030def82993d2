#include "vantu/device/get_location_handler.h"

#include <charconv>

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/platform/platform.h"

namespace vantu {

std::string GetLocationHandler::coordinateText(double degrees) {
  char buffer[32];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, degrees);
  return std::string(buffer, result.ptr);
}

LocationManager& GetLocationHandler::locManager() {
  if (!locManager_) locManager_ = platform().locationServices->makeManager();
  return *locManager_;
}

void GetLocationHandler::showDisabledAlert(const std::shared_ptr<ViewController>& viewController) {
  auto alert = std::make_shared<AlertController>(std::string(kDisabledAlertTitle), std::string(kDisabledAlertMessage),
                                                 AlertController::Style::Alert);
  alert->addAction(AlertAction(std::string(kDisabledAlertButton), AlertAction::Style::Default,
                               [weakAlert = std::weak_ptr<AlertController>(alert)](const AlertAction&) {
                                 if (auto shown = weakAlert.lock()) shown->dismiss(true);
                                 platform().application->openSettingsPage();
                               }));
  viewController->present(alert, true);
}

void GetLocationHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);
  const auto& services = platform().locationServices;
  if (!services) return answerFailure(params.callback, kNoLocationServices);

  locManager().requestWhenInUseAuthorization();
  switch (services->authorizationState()) {
    case AuthorizationState::restricted:
    case AuthorizationState::denied:
      answerFailure(params.callback, kAccessDisabled);
      return showDisabledAlert(params.viewController);
    case AuthorizationState::notDetermined:
      answerFailure(params.callback, kNotDetermined);
      return locManager().requestWhenInUseAuthorization();
    case AuthorizationState::authorized:
    case AuthorizationState::authorizedWhenInUse: {
      auto fix = locManager().location();
      if (!fix) return answerFailure(params.callback, kNoFix);
      return params.callback(Dict{
          {"success", true},
          {"data", Dict{{"lat", coordinateText(fix->latitude)}, {"long", coordinateText(fix->longitude)}}}});
    }
    default:
      return;  // a state the library does not know: no answer
  }
}

}  // namespace vantu
