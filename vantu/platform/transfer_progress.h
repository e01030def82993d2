#pragma once
// How far a transfer has come: bytes received so far and, when the server
// said, how many there are in all.

#include <cstdint>
#include <optional>

namespace vantu {

struct TransferProgress {
  std::int64_t received = 0;
  /// Unset while unknown (no length given, or a compressed body whose
  /// decoded size the length does not tell).
  std::optional<std::int64_t> total;

  bool operator==(const TransferProgress&) const = default;
};

}  // namespace vantu
