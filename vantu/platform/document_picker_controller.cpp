#include "vantu/platform/document_picker_controller.h"

namespace vantu {

bool DocumentPickerController::pickDocuments(const std::vector<std::string>& urls) {
  auto presenter = presentingViewController();
  if (!presenter) return false;
  auto keepAlive = shared_from_this();
  presenter->dismiss(true);
  auto delegate = delegate_.lock();
  if (!delegate) return true;
  if (!allowsMultipleSelection_ && urls.size() == 1) {
    delegate->didPickDocument(*this, urls.front());
  } else {
    delegate->didPickDocuments(*this, urls);
  }
  return true;
}

bool DocumentPickerController::cancel() {
  auto presenter = presentingViewController();
  if (!presenter) return false;
  auto keepAlive = shared_from_this();
  presenter->dismiss(true);
  if (auto delegate = delegate_.lock()) delegate->wasCancelled(*this);
  return true;
}

}  // namespace vantu
