// SHA-1 and the sandbox domain names derived from app ids.

#include <gtest/gtest.h>

#include "vantu/core/laizaxlu.h"
#include "vantu/storage/secure_string_hasher.h"

namespace vantu {
namespace {

TEST(SecureStringHasher, MatchesTheSha1VectorsHashesEveryByteAndSaltsSandboxNames) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "da39a3ee5e6b4b0d3255bfef95601890afd80709"}, {"abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
      {std::string(1000000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
      {"\xc3\xa9", "bf15be717ac1b080b4f1c456692825891ff5073d"},  // "é" as UTF-8
  };
  for (const auto& [text, hex] : cases) EXPECT_EQ(SecureStringHasher::hexSHA1(text), hex);
  const std::string withNul("a\0b", 3);
  EXPECT_NE(SecureStringHasher::hexSHA1(withNul), SecureStringHasher::hexSHA1("a"));
  EXPECT_NE(SecureStringHasher::hexSHA1(withNul), SecureStringHasher::hexSHA1("ab"));
  // Sandbox domain names are the salted hash followed by the marker.
  EXPECT_EQ(sandboxDomainName("app1"), "d7e1846715332e51421237a7a34f33ccf7bb97db_flh5");
  EXPECT_EQ(sandboxDomainName(""), SecureStringHasher::hexSHA1("kwbalsam__kwtundra") + "_flh5");
  // That tricky ids stay apart is pinned end to end by the storage bridge test.
  EXPECT_EQ(Laizaxlu::shared().getSandboxedFileNameForUniqueAppIdentifier("app1"), sandboxDomainName("app1"));
}

}  // namespace
}  // namespace vantu
