#pragma once
// Error records and the result payloads that every bridge answers with.

#include <cstdint>
#include <string>
#include <string_view>

#include "vantu/value/value.h"

namespace vantu {

/// An error a handler reports to the page through its code and message.
struct H5OpError {
  std::int64_t code = 0;
  std::string message;

  /// "H5OpError-> code: <code> message: <message>"
  std::string localizedDescription() const;
  bool operator==(const H5OpError&) const = default;
};

class H5OpErrorUtil {
 public:
  /// {"error": {"code": code, "message": message}, "success": false}
  static Dict errorResponse(std::int64_t code, std::string_view message);
  /// {"data": data}
  static Dict successResponse(Dict data);
};

namespace payload {

/// The code of every bridge's flat failure.
inline constexpr std::int64_t kFailureCode = 2;

/// {"error": 2, "message": message}: how a bridge says it failed.
Dict failure(std::string_view message);
/// {"data": value}
Dict success(Value value);
/// {"data": {"success": true}}
Dict successFlag();
/// {"success": true, "data": value}
Dict successWithData(Value value);

}  // namespace payload
}  // namespace vantu
