#include "vantu/core/url.h"

#include <cstddef>

namespace vantu {
namespace {

bool isAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool isNonAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }
bool isUnreserved(char c) { return isAlpha(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~'; }
bool isSubDelim(char c) {
  switch (c) {
    case '!': case '$': case '&': case '\'': case '(': case ')':
    case '*': case '+': case ',': case ';': case '=':
      return true;
    default:
      return false;
  }
}
bool isGenDelim(char c) {
  return c == ':' || c == '/' || c == '?' || c == '#' || c == '[' || c == ']' || c == '@';
}

int hexValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c - 'A' + 10;
}

/// Well-formed UTF-8: no stray continuation bytes, no overlong forms, no
/// surrogates, nothing above U+10FFFF.
bool isValidUtf8(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size()) {
    auto b = static_cast<unsigned char>(s[i]);
    if (b < 0x80) {
      ++i;
      continue;
    }
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (b >= 0xC2 && b <= 0xDF) {
      length = 2;
    } else if (b >= 0xE0 && b <= 0xEF) {
      length = 3;
      if (b == 0xE0) low = 0xA0;
      if (b == 0xED) high = 0x9F;
    } else if (b >= 0xF0 && b <= 0xF4) {
      length = 4;
      if (b == 0xF0) low = 0x90;
      if (b == 0xF4) high = 0x8F;
    } else {
      return false;
    }
    if (i + length > s.size()) return false;
    auto second = static_cast<unsigned char>(s[i + 1]);
    if (second < low || second > high) return false;
    for (std::size_t k = 2; k < length; ++k) {
      auto next = static_cast<unsigned char>(s[i + k]);
      if (next < 0x80 || next > 0xBF) return false;
    }
    i += length;
  }
  return true;
}

/// Every byte belongs to the URI character set (or is non-ASCII) and every
/// "%" starts a two-digit escape.
bool hasOnlyUriCharacters(std::string_view s) {
  for (std::size_t i = 0; i < s.size(); ++i) {
    char c = s[i];
    if (c == '%') {
      if (i + 2 >= s.size() || !isHexDigit(s[i + 1]) || !isHexDigit(s[i + 2])) return false;
      i += 2;
      continue;
    }
    if (!(isUnreserved(c) || isSubDelim(c) || isGenDelim(c) || isNonAscii(c))) return false;
  }
  return true;
}

/// Every byte of a component is unreserved, a sub-delimiter, non-ASCII, a
/// percent escape (already checked) or one of `extra`.
bool componentHasOnly(std::string_view s, std::string_view extra) {
  for (char c : s) {
    if (isUnreserved(c) || isSubDelim(c) || isNonAscii(c) || c == '%') continue;
    if (extra.find(c) != std::string_view::npos) continue;
    return false;
  }
  return true;
}

std::string percentDecoded(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '%' && i + 2 < s.size()) {
      out.push_back(static_cast<char>(hexValue(s[i + 1]) * 16 + hexValue(s[i + 2])));
      i += 2;
    } else {
      out.push_back(s[i]);
    }
  }
  return out;
}

bool isValidScheme(std::string_view s) {
  if (s.empty() || !isAlpha(s.front())) return false;
  for (char c : s) {
    if (!(isAlpha(c) || isDigit(c) || c == '+' || c == '-' || c == '.')) return false;
  }
  return true;
}

/// A decimal octet 0..255 without leading zeros.
bool isDecOctet(std::string_view s) {
  if (s.empty() || s.size() > 3) return false;
  for (char c : s) {
    if (!isDigit(c)) return false;
  }
  if (s.size() > 1 && s.front() == '0') return false;
  int value = 0;
  for (char c : s) value = value * 10 + (c - '0');
  return value <= 255;
}

bool isIpv4Address(std::string_view s) {
  int parts = 0;
  while (true) {
    auto dot = s.find('.');
    if (!isDecOctet(s.substr(0, dot))) return false;
    ++parts;
    if (dot == std::string_view::npos) break;
    s.remove_prefix(dot + 1);
  }
  return parts == 4;
}

/// Eight 16-bit groups in hex, at most one "::" standing for one or more
/// zero groups, the last two groups optionally written as IPv4.
bool isIpv6Address(std::string_view s) {
  auto doubleColon = s.find("::");
  if (doubleColon != std::string_view::npos && s.find("::", doubleColon + 1) != std::string_view::npos) return false;

  // The groups on one side of "::" (or of the whole address): "" is none.
  auto countGroups = [](std::string_view side, bool mayEndInIpv4, int& groups) {
    groups = 0;
    if (side.empty()) return true;
    while (true) {
      auto colon = side.find(':');
      auto group = side.substr(0, colon);
      if (colon == std::string_view::npos && mayEndInIpv4 && group.find('.') != std::string_view::npos) {
        if (!isIpv4Address(group)) return false;
        groups += 2;
        return true;
      }
      if (group.empty() || group.size() > 4) return false;
      for (char c : group) {
        if (!isHexDigit(c)) return false;
      }
      ++groups;
      if (colon == std::string_view::npos) return true;
      side.remove_prefix(colon + 1);
    }
  };

  if (doubleColon == std::string_view::npos) {
    int groups = 0;
    return countGroups(s, true, groups) && groups == 8;
  }
  int before = 0;
  int after = 0;
  if (!countGroups(s.substr(0, doubleColon), false, before)) return false;
  if (!countGroups(s.substr(doubleColon + 2), true, after)) return false;
  return before + after <= 7;
}

/// The inside of "[...]": an IPv6 address with an optional zone ("%25"
/// then the zone's name), or a future format ("v" hex "." text).
bool isIpLiteral(std::string_view s) {
  if (!s.empty() && (s.front() == 'v' || s.front() == 'V')) {
    auto dot = s.find('.');
    if (dot == std::string_view::npos || dot < 2 || dot + 1 >= s.size()) return false;
    for (char c : s.substr(1, dot - 1)) {
      if (!isHexDigit(c)) return false;
    }
    for (char c : s.substr(dot + 1)) {
      if (!(isUnreserved(c) || isSubDelim(c) || c == ':')) return false;
    }
    return true;
  }
  auto zone = s.find('%');
  if (zone == std::string_view::npos) return isIpv6Address(s);
  auto zoneName = s.substr(zone);
  if (zoneName.size() <= 3 || zoneName.substr(0, 3) != "%25") return false;
  for (char c : zoneName.substr(3)) {
    if (!(isUnreserved(c) || c == '%')) return false;
  }
  return isIpv6Address(s.substr(0, zone));
}

bool hasControlCharacter(std::string_view s) {
  for (char c : s) {
    auto b = static_cast<unsigned char>(c);
    if (b < 0x20 || b == 0x7F) return true;
  }
  return false;
}

}  // namespace

std::optional<Url> Url::parse(std::string_view text) {
  if (text.empty() || !hasOnlyUriCharacters(text) || !isValidUtf8(text)) return std::nullopt;

  Url url;
  url.text_ = std::string(text);
  std::string_view rest = text;

  if (auto hash = rest.find('#'); hash != std::string_view::npos) {
    auto fragment = rest.substr(hash + 1);
    if (!componentHasOnly(fragment, ":@/?")) return std::nullopt;
    url.fragment_ = std::string(fragment);
    rest = rest.substr(0, hash);
  }
  if (auto question = rest.find('?'); question != std::string_view::npos) {
    auto query = rest.substr(question + 1);
    if (!componentHasOnly(query, ":@/?")) return std::nullopt;
    url.query_ = std::string(query);
    rest = rest.substr(0, question);
  }

  // A ":" before the first "/" ends the scheme. A relative reference may
  // not have one there, so a prefix that is no scheme makes no URL.
  auto colon = rest.find(':');
  if (colon != std::string_view::npos && colon < rest.find('/')) {
    auto scheme = rest.substr(0, colon);
    if (!isValidScheme(scheme)) return std::nullopt;
    url.scheme_ = std::string(scheme);
    rest.remove_prefix(colon + 1);
  }

  if (rest.substr(0, 2) == "//") {
    rest.remove_prefix(2);
    auto slash = rest.find('/');
    auto authority = rest.substr(0, slash);
    rest = slash == std::string_view::npos ? std::string_view{} : rest.substr(slash);
    url.hasAuthority_ = true;

    if (auto at = authority.find('@'); at != std::string_view::npos) {
      auto userInfo = authority.substr(0, at);
      if (!componentHasOnly(userInfo, ":")) return std::nullopt;
      url.userInfo_ = std::string(userInfo);
      authority.remove_prefix(at + 1);
    }

    std::string_view host;
    std::string_view port;
    bool hasPort = false;
    if (!authority.empty() && authority.front() == '[') {
      auto close = authority.find(']');
      if (close == std::string_view::npos) return std::nullopt;
      host = authority.substr(1, close - 1);
      if (!isIpLiteral(host)) return std::nullopt;
      url.hostIsLiteral_ = true;
      auto after = authority.substr(close + 1);
      if (!after.empty()) {
        if (after.front() != ':') return std::nullopt;
        port = after.substr(1);
        hasPort = true;
      }
    } else {
      auto portColon = authority.find(':');
      host = authority.substr(0, portColon);
      if (portColon != std::string_view::npos) {
        port = authority.substr(portColon + 1);
        hasPort = true;
      }
      if (!componentHasOnly(host, "")) return std::nullopt;
    }

    if (hasPort && !port.empty()) {
      std::uint32_t value = 0;
      for (char c : port) {
        if (!isDigit(c)) return std::nullopt;
        value = value * 10 + static_cast<std::uint32_t>(c - '0');
        if (value > 65535) return std::nullopt;
      }
      url.port_ = static_cast<std::uint16_t>(value);
    }

    if (!host.empty()) {
      auto decoded = percentDecoded(host);
      if (!isValidUtf8(decoded) || hasControlCharacter(decoded)) return std::nullopt;
      url.host_ = std::move(decoded);
    }
  }

  if (!componentHasOnly(rest, ":@/")) return std::nullopt;
  url.path_ = std::string(rest);
  return url;
}

std::optional<std::string> Url::user() const {
  if (!userInfo_) return std::nullopt;
  return userInfo_->substr(0, userInfo_->find(':'));
}

std::optional<std::string> Url::password() const {
  if (!userInfo_) return std::nullopt;
  auto colon = userInfo_->find(':');
  if (colon == std::string::npos) return std::nullopt;
  return userInfo_->substr(colon + 1);
}

std::string asciiLowercased(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

}  // namespace vantu
