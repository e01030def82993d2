#pragma once
// Hashing of app ids into storage names.

#include <string>
#include <string_view>

namespace vantu {

class SecureStringHasher {
 public:
  /// The SHA-1 of the UTF-8 bytes of `input` as 40 lower-case hex digits.
  static std::string hexSHA1(std::string_view input);
};

/// The salt around an app id before hashing. Part of the storage format:
/// changing either piece orphans every stored value.
inline constexpr std::string_view kSandboxSaltPrefix = "kwbalsam_";
inline constexpr std::string_view kSandboxSaltSuffix = "_kwtundra";
/// Ends every sandbox domain name; the access tracker tells hashed domains
/// from older ones by it.
inline constexpr std::string_view kSandboxDomainMarker = "_flh5";

/// The name of the preference suite that holds the data of the app
/// `uniqueAppId`: hexSHA1(prefix + id + suffix) + "_flh5", always 45
/// characters. Safe on any thread.
std::string sandboxDomainName(std::string_view uniqueAppId);

}  // namespace vantu
