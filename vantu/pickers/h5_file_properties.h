#pragma once
// A picked file's metadata, and what reading it under coordination gave.

#include <cstdint>
#include <optional>
#include <string>

#include "vantu/platform/platform_error.h"

namespace vantu {

struct H5FileProperties {
  std::optional<std::string> name;
  std::optional<std::int64_t> size;  // bytes
  std::optional<std::string> type;   // the extension: the name's last "."-separated piece
  std::optional<std::string> url;    // the file URL
};

struct H5FileCoordinationResult {
  std::optional<H5FileProperties> properties;
  std::optional<PlatformError> error;
};

}  // namespace vantu
