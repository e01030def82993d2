// Loading a URL's bytes: data URLs in their base64 and percent-encoded
// forms; every other URL, and text that is no URL, loads nothing.

#include <gtest/gtest.h>

#include "vantu/core/data_url.h"

namespace vantu {
namespace {

TEST(DataUrl, LoadsDataUrlsOnly) {
  const std::pair<const char*, std::optional<std::string>> cases[] = {
      {"data:,hello", "hello"},
      {"data:image/png;base64,aGVsbG8", "hello"},        // padding may be left out
      {"DATA:image/png;BASE64,aGk=", "hi"},              // scheme and marker in any case
      {"data:image/png;base64,aGVs%0AbG8=", "hello"},    // an escaped line break is skipped
      {"data:image/png;base64,aGVsbG8=#part", "hello"},  // the fragment is not the body
      {"data:image/png;base64x,aGk=", "aGk="},           // not the base64 marker: the text itself
      {"data:image/png,%89PNG%0D%0A", "\x89PNG\r\n"},
      {"data:image/png;base64,", ""},
      {"data:image/png,a,b", "a,b"},                     // only the first comma separates
      {"https://example.com/data:image.png", {}},        // any other scheme: a network URL is never fetched
      {"data:image/png;base64", {}},                     // no comma
      {"data:image/png;base64,a", {}},                   // a lone Base64 character
      {"data:image/png;base64,a*b=", {}},                // outside the alphabet
      {"data:image/png;base64, aGk=", {}},               // a space: not a URL at all
      {"data:image/png;base64,%zz", {}},                 // a broken escape: not a URL
      {"", {}},
  };
  for (const auto& [url, bytes] : cases) {
    auto loaded = loadUrlBytes(url);
    EXPECT_EQ(loaded ? std::optional(std::string(loaded->begin(), loaded->end())) : std::nullopt, bytes) << url;
  }
}

}  // namespace
}  // namespace vantu
