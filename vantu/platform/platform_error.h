#pragma once
// The platform's error object: a domain, an integer code, a localized
// description and optional failure reason, plus any extra user information.

#include <cstdint>
#include <optional>
#include <string>

#include "vantu/value/value.h"

namespace vantu {

struct PlatformError {
  std::string domain;
  std::int64_t code = 0;
  std::string localizedDescription;
  std::optional<std::string> localizedFailureReason;
  Dict userInfo;  // anything beyond the two texts above

  bool operator==(const PlatformError&) const = default;
};

}  // namespace vantu
