#include "vantu/container/vantu_h5_color.h"

#include <cstdint>
#include <string>

namespace vantu {
namespace {

// The platform's "white space and newlines" set: ASCII blanks and line
// breaks plus the Unicode space separators and line/paragraph separators.
bool isBlankCodePoint(char32_t c) {
  if (c == ' ' || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680) return true;
  if (c >= 0x2000 && c <= 0x200A) return true;
  return c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

// Decodes the UTF-8 sequence starting at `text[i]`; `length` gets its byte
// count. Broken sequences count as one byte that is not blank.
char32_t decodeAt(std::string_view text, std::size_t i, std::size_t& length) {
  const auto lead = static_cast<unsigned char>(text[i]);
  std::size_t count = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
  if (count == 0 || i + count > text.size()) {
    length = 1;
    return 0xFFFD;
  }
  char32_t c = count == 1 ? lead : lead & (0x7F >> count);
  for (std::size_t k = 1; k < count; ++k) {
    const auto next = static_cast<unsigned char>(text[i + k]);
    if ((next & 0xC0) != 0x80) {
      length = 1;
      return 0xFFFD;
    }
    c = (c << 6) | (next & 0x3F);
  }
  length = count;
  return c;
}

/// The text without leading and trailing blanks.
std::string_view trimmed(std::string_view text) {
  std::size_t begin = 0;
  std::size_t end = 0;  // one past the last non-blank character
  bool seenContent = false;
  for (std::size_t i = 0, length = 0; i < text.size(); i += length) {
    if (!isBlankCodePoint(decodeAt(text, i, length))) {
      if (!seenContent) begin = i;
      seenContent = true;
      end = i + length;
    }
  }
  return seenContent ? text.substr(begin, end - begin) : std::string_view{};
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0, length = 0; i < text.size(); i += length) {
    decodeAt(text, i, length);
    ++count;
  }
  return count;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

/// A scanner's hex read: an optional "0X" prefix, then digits up to the
/// first character that is not one. Nothing readable leaves the value 0.
std::uint64_t scanHex(std::string_view text) {
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'X' || text[1] == 'x') && hexDigit(text[2]) >= 0) {
    text.remove_prefix(2);
  }
  std::uint64_t value = 0;
  for (char c : text) {
    const int digit = hexDigit(c);
    if (digit < 0) break;
    value = value * 16 + static_cast<std::uint64_t>(digit);
  }
  return value;
}

}  // namespace

Color VantuH5Color::colorFromHexString(std::string_view hex) {
  std::string text(trimmed(hex));
  // Only ASCII letters change case; other characters cannot be hex digits
  // and end the scan wherever they stand.
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  if (!text.empty() && text.front() == '#') text.erase(0, 1);
  if (characterCount(text) != 6) return kGrey;

  const std::uint64_t value = scanHex(text);
  const auto component = [value](int shift) { return static_cast<double>((value >> shift) & 0xFF) / 255.0; };
  return Color{component(16), component(8), component(0), 1.0};
}

}  // namespace vantu
