#pragma once
// What the pickers share: their errors (the platform's error record) and
// the flat failure every picker bridge answers with.

#include <cstdint>
#include <string_view>

#include "vantu/core/h5_handler_input_params.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/platform/platform_error.h"

namespace vantu::pickers {

inline constexpr std::int64_t kFailureCode = 2;

inline PlatformError makeError(std::string_view domain, std::int64_t code, std::string_view message) {
  return PlatformError{std::string(domain), code, std::string(message), std::nullopt, {}};
}

/// Answers {"error": 2, "message": message}.
inline void answerFailure(const H5Callback& callback, std::string_view message) {
  callback(payload::flatError(kFailureCode, message));
}

}  // namespace vantu::pickers
