// libFuzzer target for the URL parser, the web-domain whitelist and data
// URLs. Properties: a parsed URL keeps its text and its parts are found in
// it; only data URLs load bytes, and a
// data URL's bytes come back from both of its encodings.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/support/finding.h"
#include "vantu/core/data_url.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/url.h"
#include "vantu/value/base64.h"

namespace {

using vantu::Url;
using vantu::fuzzing::finding;

void checkUrl(std::string_view text) {
  const auto url = Url::parse(text);
  if (!url) return;
  if (url->string() != text) finding("a parsed URL lost its text");
  if (url->scheme() && !text.starts_with(*url->scheme() + ":")) finding("the scheme is not the text's start");
  if (url->host() && !url->hasAuthority()) finding("a host without an authority");
  if (url->userInfo() && text.find(*url->userInfo() + "@") == std::string_view::npos) finding("user info not in the text");
  if (url->query() && text.find("?" + *url->query()) == std::string_view::npos) finding("the query is not in the text");
  if (url->fragment() && !text.ends_with("#" + *url->fragment())) finding("the fragment does not end the text");
  if (text.find(url->path()) == std::string_view::npos) finding("the path is not in the text");
  if (vantu::asciiLowercased(text).size() != text.size()) finding("lower-casing changed the length");

  // The web-domain gate of the page protocol reads the host of any URL.
  (void)vantu::Laizaxlu::shared().isURLWhitelisted(*url);
}

std::string percentEncoded(std::string_view bytes) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : bytes) {
    out += '%';
    out += kHex[c >> 4];
    out += kHex[c & 15];
  }
  return out;
}

void checkDataUrl(std::string_view text) {
  const auto decoded = vantu::decodeDataUrl(text);
  if (decoded && !Url::parse(text)) finding("a text that is no URL loaded as a data URL");
  if (vantu::loadUrlBytes(text) != decoded) finding("loadUrlBytes and decodeDataUrl disagree");

  // The input as the body of a data URL, in both encodings.
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  if (vantu::decodeDataUrl("data:application/octet-stream;base64," + vantu::base64::encode(bytes)) != bytes) {
    finding("a base64 data URL lost its bytes");
  }
  if (vantu::decodeDataUrl("DATA:," + percentEncoded(text)) != bytes) finding("a percent-encoded data URL lost its bytes");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  vantu::Laizaxlu::shared().setupWhiteListWebDomains({"shop.example", "xn--80ak6aa92e.com", "[::1]", "127.0.0.1"});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  checkUrl(text);
  checkDataUrl(text);
  return 0;
}
