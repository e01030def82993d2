// libFuzzer target for Base64: strict decoding accepts exactly what
// encoding writes (up to the unused low bits before the padding); lenient
// decoding agrees with it on valid text; encoding in pieces writes the same
// text as encoding at once.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/finding.h"
#include "vantu/value/base64.h"

namespace base64 = vantu::base64;
using vantu::fuzzing::finding;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const std::span<const std::uint8_t> input(bytes, size);

  // The input as text.
  const auto strict = base64::decode(text);
  const auto lenient = base64::decodeIgnoringUnknown(text);
  if (strict) {
    if (*strict != lenient) finding("lenient decoding disagrees on valid Base64");
    const std::string encoded = base64::encode(*strict);
    if (encoded.size() != text.size() || base64::decode(encoded) != strict) finding("valid Base64 does not round-trip");
  }
  if (base64::decode(base64::encode(lenient)) != lenient) finding("leniently decoded bytes do not round-trip");

  // The input as bytes: at once, and in pieces whose sizes the bytes choose.
  const std::string encoded = base64::encode(input);
  if (encoded.size() != base64::encodedLength(size)) finding("encodedLength is not the encoded length");
  if (base64::decode(encoded) != std::vector<std::uint8_t>(bytes, bytes + size)) finding("bytes do not round-trip");
  std::string streamed = "prefix";
  base64::StreamingEncoder encoder(streamed);
  for (std::size_t at = 0; at < size;) {
    const std::size_t piece = std::min<std::size_t>(size - at, 1 + bytes[at] % 6);
    if (bytes[at] % 2 == 0) encoder.append({});
    encoder.append(input.subspan(at, piece));
    at += piece;
  }
  encoder.finish();
  if (streamed != "prefix" + encoded) finding("encoding in pieces wrote another text");
  return 0;
}
