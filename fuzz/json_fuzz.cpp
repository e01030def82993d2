// libFuzzer target for the JSON codec: any input must parse or fail cleanly;
// whatever parses must survive write -> parse with the same content, in both
// layouts; after that first cycle, a further one must change nothing at all.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <simdjson.h>

#include "vantu/value/json.h"

namespace {

using vantu::Value;

// Equality across one write/parse cycle. A double with an integral value is
// written without a fraction ("100" for 1e2, "-0" for -0.0) and comes back as
// Int when it fits int64; everything else must come back identical. Parsing
// never yields NaN, infinities, bytes or non-string keys.
bool sameAfterRoundTrip(const Value& before, const Value& after) {
  if (before.isDouble() && after.isInt()) {
    const double d = *before.asNumber();
    return d >= -0x1p63 && d < 0x1p63 && static_cast<std::int64_t>(d) == *after.asInt() &&
           static_cast<double>(static_cast<std::int64_t>(d)) == d;
  }
  if (before.kind() != after.kind()) return false;
  if (const auto* a = before.asArray()) {
    const auto& b = *after.asArray();
    if (a->size() != b.size()) return false;
    for (std::size_t i = 0; i < a->size(); ++i) {
      if (!sameAfterRoundTrip((*a)[i], b[i])) return false;
    }
    return true;
  }
  if (const auto* a = before.asDict()) {
    const auto& b = after.asDict()->entries();
    if (a->size() != b.size()) return false;
    for (std::size_t i = 0; i < b.size(); ++i) {
      if (!(a->entries()[i].first == b[i].first)) return false;
      if (!sameAfterRoundTrip(a->entries()[i].second, b[i].second)) return false;
    }
    return true;
  }
  return before == after;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const vantu::json::ParseResult first = vantu::json::parse(text);

  // simdjson's DOM parser validates independently. It must agree, except that
  // it refuses numbers beyond 64-bit integers or the double range (which
  // parse() turns into doubles or rejects) and allows deeper nesting.
  static simdjson::dom::parser dom;
  const simdjson::padded_string padded(text);
  const simdjson::error_code domError = dom.parse(padded).error();
  if (domError == simdjson::SUCCESS && !first.ok() &&
      first.error().message.find("nesting deeper") == std::string::npos) {
    std::abort();
  }
  if (domError != simdjson::SUCCESS && domError != simdjson::NUMBER_ERROR && first.ok()) std::abort();

  if (!first.ok()) {
    if (first.error().message.empty()) std::abort();
    return 0;
  }
  for (const bool pretty : {false, true}) {
    const vantu::json::WriteOptions options{.pretty = pretty};
    const std::string written = vantu::json::write(first.value(), options);
    const vantu::json::ParseResult second = vantu::json::parse(written);
    if (!second.ok()) std::abort();
    if (!sameAfterRoundTrip(first.value(), second.value())) std::abort();
    // Integral doubles have become Int by now: the value is a fixed point.
    const std::string rewritten = vantu::json::write(second.value(), options);
    const vantu::json::ParseResult third = vantu::json::parse(rewritten);
    if (!third.ok() || !(third.value() == second.value())) std::abort();
    if (vantu::json::write(third.value(), options) != rewritten) std::abort();
  }
  return 0;
}
