#include "vantu/value/base64.h"

#include <gtest/gtest.h>

namespace vantu::base64 {
namespace {

std::vector<std::uint8_t> bytesOf(std::string_view s) { return {s.begin(), s.end()}; }

// RFC 4648, section 10.
TEST(Base64Test, StandardVectors) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},           {"f", "Zg=="},         {"fo", "Zm8="},        {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"},
  };
  for (const auto& [plain, encoded] : cases) {
    EXPECT_EQ(encode(bytesOf(plain)), encoded);
    EXPECT_EQ(encodedLength(std::string_view(plain).size()), std::string_view(encoded).size());
    EXPECT_EQ(decode(encoded), bytesOf(plain)) << encoded;
    EXPECT_EQ(decodeIgnoringUnknown(encoded), bytesOf(plain)) << encoded;
  }
  EXPECT_EQ(encode(std::vector<std::uint8_t>{0xFB, 0xFF}), "+/8=");
}

// Every byte value round-trips, and pieces that end inside a group stream to the one-shot text.
TEST(Base64Test, EveryByteRoundTripsAndPiecesStreamLikeOneShot) {
  std::vector<std::uint8_t> all(256);
  for (int i = 0; i < 256; ++i) all[i] = static_cast<std::uint8_t>(255 - i);
  EXPECT_EQ(decode(encode(all)), all);
  const std::vector<std::vector<const char*>> splits = {
      {"foobar"}, {"f", "o", "o", "b", "a", "r"}, {"fo", "", "ob", "ar"}, {"f", "ooba", "r"}, {"foo", "b"},
      {"foo", "b", "a"}};
  for (const auto& pieces : splits) {
    std::string out = "x", whole;
    StreamingEncoder encoder(out);
    for (const char* piece : pieces) {
      encoder.append(bytesOf(piece));
      whole += piece;
    }
    encoder.finish();
    EXPECT_EQ(out, "x" + encode(bytesOf(whole))) << whole << " in " << pieces.size() << " pieces";
  }
}

TEST(Base64Test, StrictDecodeRejectsWhatLenientDecodeSkips) {
  for (const char* text : {"Zg=", "Zg", "Z", "Z===", "====", "=Zm9", "Zg=a", "Zm9v\n", "Zm 9v", "Zm9v====",
                           "Zg==Zg==", "Zm-v", "Zm_v", "Zm9\x80", "Zm9v Zg=="}) {
    EXPECT_EQ(decode(text), std::nullopt) << text;
  }
  EXPECT_EQ(decode("Zh=="), bytesOf("f"));  // unused bits of the last character are ignored
  const std::pair<const char*, const char*> lenient[] = {
      {"Zm9v\r\nYmFy", "foobar"}, {" Zm9v YmE= ", "fooba"}, {"Zm9vYg", "foob"}, {"Zm9vY", "foo"},
      {"Zg==Zm9v", "f"},          {"*Z-g_*", "f"},          {"", ""},           {"=Zm9v", ""},
  };
  for (const auto& [text, plain] : lenient) EXPECT_EQ(decodeIgnoringUnknown(text), bytesOf(plain)) << text;
}

}  // namespace
}  // namespace vantu::base64
