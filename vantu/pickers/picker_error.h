#pragma once
// The pickers' errors (the platform's error record).

#include <cstdint>
#include <string_view>

#include "vantu/platform/platform_error.h"

namespace vantu::pickers {

inline PlatformError makeError(std::string_view domain, std::int64_t code, std::string_view message) {
  return PlatformError{std::string(domain), code, std::string(message), std::nullopt, {}};
}

}  // namespace vantu::pickers
