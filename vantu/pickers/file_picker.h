#pragma once
// Drives the system document picker for the file bridge: shows it for any
// item, several at a time, as a popover, and hands the chosen file URLs or
// the cancellation to the callback it was given. One picker at a time.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/platform/document_picker_controller.h"
#include "vantu/platform/platform_error.h"

namespace vantu {

class FilePicker : public DocumentPickerControllerDelegate, public std::enable_shared_from_this<FilePicker> {
 public:
  static constexpr std::string_view kErrorDomain = "FilePickerUtil";
  static constexpr std::string_view kBusy = "File picker is busy!";
  static constexpr std::string_view kCancelled = "User cancelled the file pick operation!";
  static constexpr std::string_view kAnyItem = "public.item";

  using Callback =
      std::function<void(bool success, std::optional<PlatformError> error, std::optional<std::vector<std::string>> urls)>;

  /// Shows the picker on `on`. When one is up already, nothing is shown and
  /// `callback` gets the busy error (code -1) at once.
  void pick(ViewController& on, Callback callback);
  bool isShowing() const { return static_cast<bool>(callback_); }

  void didPickDocuments(DocumentPickerController& picker, const std::vector<std::string>& urls) override;
  void didPickDocument(DocumentPickerController& picker, const std::string& url) override;
  void wasCancelled(DocumentPickerController& picker) override;

 private:
  void complete(bool success, std::optional<PlatformError> error, std::optional<std::vector<std::string>> urls);

  Callback callback_;
};

}  // namespace vantu
