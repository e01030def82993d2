#include "vantu/pickers/file_picker.h"

#include "vantu/pickers/picker_error.h"

namespace vantu {

void FilePicker::pick(ViewController& on, Callback callback) {
  if (callback_) {
    callback(false, pickers::makeError(kErrorDomain, -1, kBusy), std::nullopt);
    return;
  }
  callback_ = std::move(callback);
  auto picker = std::make_shared<DocumentPickerController>(std::vector<std::string>{std::string(kAnyItem)},
                                                           DocumentPickerController::Mode::importCopy);
  picker->setDelegate(weak_from_this());
  picker->setAllowsMultipleSelection(true);
  picker->setModalPresentationStyle(DocumentPickerController::PresentationStyle::popover);
  on.present(picker, true);
}

void FilePicker::didPickDocuments(DocumentPickerController&, const std::vector<std::string>& urls) {
  complete(true, std::nullopt, urls);
}

void FilePicker::didPickDocument(DocumentPickerController&, const std::string& url) {
  complete(true, std::nullopt, std::vector<std::string>{url});
}

void FilePicker::wasCancelled(DocumentPickerController&) {
  complete(false, pickers::makeError(kErrorDomain, 0, kCancelled), std::nullopt);
}

void FilePicker::complete(bool success, std::optional<PlatformError> error, std::optional<std::vector<std::string>> urls) {
  auto callback = std::exchange(callback_, {});
  if (callback) callback(success, std::move(error), std::move(urls));
}

}  // namespace vantu
