#include "vantu/core/data_url.h"

#include <string>

#include "vantu/core/url.h"
#include "vantu/value/base64.h"

namespace vantu {
namespace {

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// `%XX` turned into its byte; a "%" not followed by two hex digits stays
/// as it is (a parsed URL has none).
std::string percentDecoded(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '%' && i + 2 < s.size()) {
      const int hi = hexValue(s[i + 1]), lo = hexValue(s[i + 2]);
      if (hi >= 0 && lo >= 0) {
        out.push_back(static_cast<char>(hi * 16 + lo));
        i += 2;
        continue;
      }
    }
    out.push_back(s[i]);
  }
  return out;
}

bool isAsciiWhitespace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r'; }

/// Base64 as a data URL body is read: white space skipped, the "="
/// padding optional, anything else outside the alphabet refused.
std::optional<std::vector<std::uint8_t>> forgivingBase64(std::string_view text) {
  std::string compact;
  compact.reserve(text.size() + 2);
  for (char c : text) {
    if (!isAsciiWhitespace(c)) compact.push_back(c);
  }
  if (compact.size() % 4 == 0) return base64::decode(compact);
  if (compact.size() % 4 == 1) return std::nullopt;
  if (compact.find('=') != std::string::npos) return std::nullopt;  // padding, but not a whole group
  compact.append(4 - compact.size() % 4, '=');
  return base64::decode(compact);
}

bool endsWithBase64Marker(std::string_view mediaType) {
  while (!mediaType.empty() && isAsciiWhitespace(mediaType.back())) mediaType.remove_suffix(1);
  constexpr std::string_view kMarker = "base64";
  if (mediaType.size() < kMarker.size()) return false;
  if (asciiLowercased(mediaType.substr(mediaType.size() - kMarker.size())) != kMarker) return false;
  mediaType.remove_suffix(kMarker.size());
  while (!mediaType.empty() && mediaType.back() == ' ') mediaType.remove_suffix(1);
  return !mediaType.empty() && mediaType.back() == ';';
}

}  // namespace

std::optional<std::vector<std::uint8_t>> decodeDataUrl(std::string_view text) {
  auto url = Url::parse(text);
  if (!url || !url->scheme() || asciiLowercased(*url->scheme()) != "data") return std::nullopt;

  std::string_view rest = text.substr(url->scheme()->size() + 1);  // after "data:"
  if (auto hash = rest.find('#'); hash != std::string_view::npos) rest = rest.substr(0, hash);
  const auto comma = rest.find(',');
  if (comma == std::string_view::npos) return std::nullopt;

  const std::string body = percentDecoded(rest.substr(comma + 1));
  if (endsWithBase64Marker(percentDecoded(rest.substr(0, comma)))) return forgivingBase64(body);
  return std::vector<std::uint8_t>(body.begin(), body.end());
}

std::optional<std::vector<std::uint8_t>> loadUrlBytes(std::string_view text) {
  // Only data URLs are loaded (see the header).
  return decodeDataUrl(text);
}

}  // namespace vantu
