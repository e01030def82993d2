#pragma once
// JSON text <-> Value. Parsing never throws: malformed input (bad syntax,
// invalid UTF-8, nesting deeper than the limit) gives a JsonError.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/value/result.h"
#include "vantu/value/value.h"

namespace vantu::json {

struct JsonError {
  std::string message;  // e.g. "invalid JSON: unclosed string (at byte 12)"
};

/// Either the parsed value or an error; `ok()` tells which.
using ParseResult = Result<Value, JsonError>;

/// Maximum nesting depth accepted by `parse`.
inline constexpr std::size_t kMaxDepth = 512;

/// Parses one JSON text. Integral numbers that fit int64 become Int; every
/// other number (fractions, exponents, integers beyond int64) becomes Double.
/// Duplicate object keys: the last value wins, at the first key's position.
ParseResult parse(std::string_view text);

/// Parses the whole file at `path`; nothing when it cannot be read.
std::optional<ParseResult> parseFile(const std::filesystem::path& path);

struct WriteOptions {
  /// Two-space indentation with " : " between key and value (the layout of
  /// the reference platform's pretty-printed JSON).
  bool pretty = false;
};

/// Writes valid JSON for any value: doubles in shortest round-trip form
/// (NaN and infinities as null), bytes as Base64 text, non-string dict keys
/// as their text, invalid UTF-8 in strings replaced by U+FFFD. U+2028 and
/// U+2029 are escaped so the text is also a valid JavaScript literal.
std::string write(const Value& value, const WriteOptions& options = {});
void writeTo(std::string& out, const Value& value, const WriteOptions& options = {});

/// Appends `s` as a quoted, escaped JSON string.
void writeString(std::string& out, std::string_view s);

}  // namespace vantu::json
