#include "vantu/device/permission_helper.h"

#include "vantu/platform/alert_controller.h"
#include "vantu/platform/platform.h"

namespace vantu {

void PermissionHelper::showOpenSettingsAlert(std::string message, const std::shared_ptr<ViewController>& viewController,
                                             std::function<void()> completion) {
  auto alert = std::make_shared<AlertController>("", std::move(message), AlertController::Style::Alert);
  // The alert owns its actions, so they hold it weakly. A tapped system
  // alert goes away by itself; here the handler dismisses it.
  std::weak_ptr<AlertController> weakAlert = alert;
  auto dismiss = [weakAlert] {
    if (auto shown = weakAlert.lock()) shown->dismiss(true);
  };
  alert->addAction(AlertAction(std::string(kOpenSettingsTitle), AlertAction::Style::Default,
                               [dismiss, completion](const AlertAction&) {
                                 dismiss();
                                 platform().application->openSettingsPage();
                                 completion();
                               }));
  alert->addAction(AlertAction(std::string(kCancelTitle), AlertAction::Style::Cancel,
                               [dismiss, completion](const AlertAction&) {
                                 dismiss();
                                 completion();
                               }));
  viewController->present(alert, true);
}

}  // namespace vantu
