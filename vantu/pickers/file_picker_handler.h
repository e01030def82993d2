#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/core/h5_base_handler.h"
#include "vantu/pickers/file_picker.h"
#include "vantu/pickers/file_picker_coordinator.h"
#include "vantu/pickers/h5_file_restrictions.h"
#include "vantu/platform/dispatch.h"

namespace vantu {

/// "vantuPickFile": the user picks documents; answers {"data": [entry, ...]}
/// with, per file in the picker's order, {"meta": {"fileName", "fileSize",
/// "fileType"}, "base64"} or {"error": text}, after the page's limits
/// ("extensionsAllowed", "maxLengthPerFile", "maxNumberOfFiles"). Metadata
/// is read on the main thread, the files on the queue
/// "com.vantu.FilePickerHandler.BGQueue"; the answer comes on the main queue.
class FilePickerHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuPickFile";
  static constexpr std::string_view kQueueLabel = "com.vantu.FilePickerHandler.BGQueue";
  static constexpr std::string_view kNoViewController = "FilePickerHandler: Failed to bind params.viewController!";
  static constexpr std::string_view kPickFailed = "FilePickerHandler: Failed to pick files!";
  static constexpr std::string_view kNoUrls = "FilePickerHandler: Failed to bind urls!";
  static constexpr std::string_view kTooManyFiles =
      "FilePickerHandler: The count of picked files exceeds max number of files specified!";
  static constexpr std::string_view kExtensionNotAllowed =
      "FilePickerHandler: Extension of the processed file is not present in the allowed extensions!";
  static constexpr std::string_view kEmptyFile = "FilePickerHandler: Invalid file size : <= 0";
  static constexpr std::string_view kFileTooBig = "FilePickerHandler: Invalid file size : > Max File Size";
  static constexpr std::string_view kOverReadLimit = "FilePickerHandler: File is larger than the read limit!";

  /// Files larger than this are not read: their entry is an error.
  static constexpr std::uint64_t kDefaultMaxReadBytes = std::uint64_t{1} << 30;

  FilePickerHandler();

  void handleWith(H5HandlerInputParams params) override;

  /// The per-file read limit, in bytes (kDefaultMaxReadBytes at first).
  void setMaxReadBytes(std::uint64_t bytes) { maxReadBytes_ = bytes; }
  std::uint64_t maxReadBytes() const { return maxReadBytes_; }

  const std::shared_ptr<FilePicker>& filePicker() const { return filePicker_; }

  /// The entry for one file, by the ordered verdicts (reads the file).
  static Dict entryFor(const H5FileCoordinationResult& result, const H5FileRestrictions& restrictions,
                       std::uint64_t maxReadBytes);

 private:
  void answerPicked(bool success, const std::optional<PlatformError>& error,
                    const std::optional<std::vector<std::string>>& urls, const H5FileRestrictions& restrictions,
                    const H5Callback& callback);
  void processFiles(const std::vector<std::string>& urls, H5FileRestrictions restrictions, H5Callback callback);

  std::shared_ptr<FilePicker> filePicker_;
  FilePickerCoordinator coordinator_;
  std::shared_ptr<SerialQueue> bgQueue_;
  std::uint64_t maxReadBytes_ = kDefaultMaxReadBytes;
};

}  // namespace vantu
