#pragma once
// Loading the bytes a URL names, for bridges that accept pictures as URLs.
//
// Only "data:" URLs (RFC 2397) are loaded, in both forms: base64
// ("data:image/png;base64,iVBOR...") and percent-encoded
// ("data:image/svg+xml,%3Csvg%20..."). Any other URL (http, https, file,
// relative references) loads nothing here: the library never fetches from
// the network or reads files on the main thread on a page's behalf, so a
// bridge that is handed such a URL fails as it does for bytes it cannot use.

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vantu {

/// The bytes of a "data:" URL written as `text` (the scheme in any case):
/// its body after the first ",", percent-decoded, then base64-decoded when
/// the media type part ends with ";base64". Nothing when `text` is not a
/// URL, is not a data URL, has no ",", or has a base64 body that is not
/// Base64 (white space is skipped, missing "=" padding is accepted). The
/// media type is not checked and a "#fragment" is not part of the body.
std::optional<std::vector<std::uint8_t>> decodeDataUrl(std::string_view text);

/// The bytes the URL written as `text` loads: a data URL's bytes, nothing
/// for every other URL (see above) and for text that is not a URL.
std::optional<std::vector<std::uint8_t>> loadUrlBytes(std::string_view text);

}  // namespace vantu
