#pragma once
// Reads a picked file's metadata (name, size) the way the system's file
// coordination hands a file to a reader: the accessor runs synchronously,
// inside the call, with the URL to read.

#include <functional>
#include <string>
#include <string_view>

#include "vantu/pickers/h5_file_properties.h"

namespace vantu {

class FilePickerCoordinator {
 public:
  static constexpr std::string_view kErrorDomain = "FilePickerCoordinator";
  static constexpr std::string_view kMetadataFailed = "Failed to read meta data";
  static constexpr std::string_view kCoordinationFailed = "Failed to coordinate reading of the file";

  /// Calls `accessor` with the metadata of the file at `url`, or with the
  /// error "Failed to read meta data" (code 1) when it cannot be read.
  /// Coordination itself fails, before any accessor, for a URL that is
  /// not a file URL: then `accessor` gets the coordination error (code 2),
  /// so that every file is accounted for.
  void readMetadata(const std::string& url, const std::function<void(H5FileCoordinationResult)>& accessor) const;

  /// "report.PDF" -> "PDF", "README" -> "README", none -> none.
  static std::optional<std::string> typeOfName(const std::optional<std::string>& name);
};

}  // namespace vantu
