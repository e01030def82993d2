#pragma once
// The page's limits on a file pick, bound from its arguments; a value of
// the wrong type counts as absent.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vantu/value/value.h"

namespace vantu {

struct H5FileRestrictions {
  std::optional<std::int64_t> maxFileSize;                     // "maxLengthPerFile", bytes
  std::optional<std::int64_t> maxNumberOfFilesAllowed;         // "maxNumberOfFiles"
  std::optional<std::vector<std::string>> allowedExtensions;  // "extensionsAllowed"

  /// An "extensionsAllowed" holding anything but strings is absent as a whole.
  static H5FileRestrictions bind(const Dict& data);
};

}  // namespace vantu
