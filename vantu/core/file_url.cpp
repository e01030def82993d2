#include "vantu/core/file_url.h"

#include <cctype>

#include "vantu/core/url.h"

namespace vantu {
namespace {

bool keptAsIs(unsigned char c) {
  return std::isalnum(c) != 0 || c == '-' || c == '.' || c == '_' || c == '~' || c == '/';
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string fileUrlFromPath(std::string_view absolutePath) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string url = "file://";
  for (char ch : absolutePath) {
    const auto c = static_cast<unsigned char>(ch);
    if (keptAsIs(c)) {
      url += ch;
    } else {
      url += '%';
      url += kHex[c >> 4];
      url += kHex[c & 0xF];
    }
  }
  return url;
}

std::optional<std::string> pathFromFileUrl(std::string_view text) {
  auto url = Url::parse(text);
  if (!url || !url->scheme() || asciiLowercased(*url->scheme()) != "file") return std::nullopt;
  if (url->host() && asciiLowercased(*url->host()) != "localhost") return std::nullopt;
  const std::string& encoded = url->path();
  std::string path;
  path.reserve(encoded.size());
  for (std::size_t i = 0; i < encoded.size(); ++i) {
    if (encoded[i] != '%') {
      path += encoded[i];
      continue;
    }
    const int high = i + 2 < encoded.size() ? hexValue(encoded[i + 1]) : -1;
    const int low = high >= 0 ? hexValue(encoded[i + 2]) : -1;
    if (low < 0) return std::nullopt;
    path += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return path;
}

std::string lastPathComponent(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  if (path == "/") return "";
  const auto slash = path.rfind('/');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

}  // namespace vantu
