#pragma once
// Standard Base64 (RFC 4648 alphabet, '=' padding, no line breaks).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantu::base64 {

std::size_t encodedLength(std::size_t byteCount);
std::string encode(std::span<const std::uint8_t> bytes);
/// Appends the encoding of `bytes` to `out` (no intermediate copy).
void encodeAppend(std::string& out, std::span<const std::uint8_t> bytes);

/// Encodes bytes that arrive in pieces (a file read chunk by chunk) onto
/// the end of `out`, with the same text as one `encodeAppend` of all of
/// them. Up to two bytes of a piece wait for the next one; `finish` writes
/// them with the padding. Reserving `encodedLength(total)` in `out` first
/// keeps the text in one allocation.
class StreamingEncoder {
 public:
  explicit StreamingEncoder(std::string& out) : out_(out) {}
  void append(std::span<const std::uint8_t> bytes);
  void finish();

 private:
  std::string& out_;
  std::uint8_t pending_[2] = {};
  std::size_t pendingCount_ = 0;
};

/// Strict decoding: nullopt on any character outside the alphabet, bad
/// padding or a length that is not a multiple of four.
std::optional<std::vector<std::uint8_t>> decode(std::string_view text);

/// Lenient decoding that skips every character outside the alphabet
/// (white space, line breaks, stray symbols) and stops at the first '='.
/// Incomplete trailing groups of one character are dropped.
std::vector<std::uint8_t> decodeIgnoringUnknown(std::string_view text);

}  // namespace vantu::base64
