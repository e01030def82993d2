#include "vantu/storage/secure_string_hasher.h"

#include <openssl/evp.h>

#include <array>
#include <cstdio>

#include "vantu/core/fatal.h"

namespace vantu {

std::string SecureStringHasher::hexSHA1(std::string_view input) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  if (EVP_Digest(input.data(), input.size(), digest.data(), &size, EVP_sha1(), nullptr) != 1 || size != 20) {
    fatalError("SHA-1 is not available from libcrypto");
  }
  std::string hex;
  hex.reserve(40);
  char two[3];
  for (unsigned int i = 0; i < 20; ++i) {
    std::snprintf(two, sizeof two, "%02hhx", digest[i]);
    hex.append(two, 2);
  }
  return hex;
}

std::string sandboxDomainName(std::string_view uniqueAppId) {
  std::string salted;
  salted.reserve(kSandboxSaltPrefix.size() + uniqueAppId.size() + kSandboxSaltSuffix.size());
  salted.append(kSandboxSaltPrefix).append(uniqueAppId).append(kSandboxSaltSuffix);
  return SecureStringHasher::hexSHA1(salted) + std::string(kSandboxDomainMarker);
}

}  // namespace vantu
