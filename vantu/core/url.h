#pragma once
// URLs as the whitelists see them: a URI reference split into its parts.
//
// Parsing follows the generic URI syntax (scheme ":" "//" authority path
// "?" query "#" fragment) and accepts relative references ("/a", "a/b",
// "//host/a"). Non-ASCII characters are accepted as they are (international
// addresses written in UTF-8); anything else outside the URI character set,
// a broken percent escape, invalid UTF-8, a malformed IPv6 literal or a port
// that is not a number up to 65535 makes the text no URL.
//
// Components are kept as written (no case folding, escapes left in the path,
// query and fragment), except the host: it is percent-decoded, and an IPv6
// or future-format literal is given without its brackets ("::1" for
// "http://[::1]/"). An empty host ("file:///a") counts as no host.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantu {

class Url {
 public:
  /// The parts of `text`, or nothing when it is not a URL reference.
  static std::optional<Url> parse(std::string_view text);

  /// The text the URL was parsed from.
  const std::string& string() const { return text_; }

  /// Without the ":" ("https"), as written; absent for a relative reference.
  const std::optional<std::string>& scheme() const { return scheme_; }
  /// True when the text has a "//" authority part, even an empty one.
  bool hasAuthority() const { return hasAuthority_; }
  /// Everything before the "@" of the authority, as written.
  const std::optional<std::string>& userInfo() const { return userInfo_; }
  /// The user info up to its first ":" and the rest after it.
  std::optional<std::string> user() const;
  std::optional<std::string> password() const;
  /// Percent-decoded, IPv6 without brackets; absent when there is no
  /// authority or its host is empty.
  const std::optional<std::string>& host() const { return host_; }
  /// True when the host was written as a bracketed literal ("[::1]").
  bool isHostIpLiteral() const { return hostIsLiteral_; }
  /// Absent when not given or given empty ("http://a:/").
  std::optional<std::uint16_t> port() const { return port_; }
  /// As written, possibly empty.
  const std::string& path() const { return path_; }
  /// Without the "?" / "#"; present but empty for a bare "?" / "#".
  const std::optional<std::string>& query() const { return query_; }
  const std::optional<std::string>& fragment() const { return fragment_; }

  bool operator==(const Url& other) const { return text_ == other.text_; }

 private:
  Url() = default;

  std::string text_;
  std::optional<std::string> scheme_;
  bool hasAuthority_ = false;
  std::optional<std::string> userInfo_;
  std::optional<std::string> host_;
  bool hostIsLiteral_ = false;
  std::optional<std::uint16_t> port_;
  std::string path_;
  std::optional<std::string> query_;
  std::optional<std::string> fragment_;
};

/// `text` with A-Z turned into a-z; every other byte (UTF-8 sequences for
/// non-ASCII letters included) is left as it is.
std::string asciiLowercased(std::string_view text);

}  // namespace vantu
