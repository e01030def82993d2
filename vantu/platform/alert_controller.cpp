#include "vantu/platform/alert_controller.h"

namespace vantu {

bool AlertController::tapAction(std::size_t index) {
  if (index >= actions_.size() || !presentingViewController()) return false;
  // The handler may dismiss the alert, which releases the presenter's
  // reference: keep the alert and the action alive until it returns.
  auto keepAlive = shared_from_this();
  const AlertAction action = actions_[index];
  if (action.handler_) action.handler_(action);
  return true;
}

}  // namespace vantu
