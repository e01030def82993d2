#pragma once
// Decoding the image files that pages send into the library's `Image`
// (8-bit RGBA pixels).
//
// Only PNG, JPEG, GIF (its first frame) and BMP are read; any other format,
// a corrupt or truncated file, and a picture beyond the limits below give
// nothing. A platform decodes on a maintained library and refuses a picture
// beyond the limits from its header, before any pixel memory is taken, so a
// small hostile file cannot claim gigabytes.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "vantu/platform/images.h"

namespace vantu {

/// The largest width or height accepted, in pixels.
inline constexpr std::int64_t kMaxDecodedImageSide = 16384;
/// The largest pixel count accepted (width * height): 32 megapixels, that
/// is 128 MiB of RGBA.
inline constexpr std::int64_t kMaxDecodedImagePixels = std::int64_t{1} << 25;

/// Whether a picture of `width` x `height` pixels is within the limits.
inline bool isDecodableImageSize(std::int64_t width, std::int64_t height) {
  return width > 0 && height > 0 && width <= kMaxDecodedImageSide && height <= kMaxDecodedImageSide &&
         width * height <= kMaxDecodedImagePixels;
}

class ImageDecoder {
 public:
  virtual ~ImageDecoder() = default;

  /// The picture in `bytes`, or nothing when they are not a whole PNG, JPEG,
  /// GIF or BMP file within the limits. Never throws. The image's size is
  /// its pixel size (scale 1); its name is empty.
  std::optional<Image> decode(std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return std::nullopt;
    auto image = doDecode(bytes);
    // Whatever the platform's library did, only a whole picture within the
    // limits leaves here.
    if (!image || !isDecodableImageSize(static_cast<std::int64_t>(image->size.width),
                                        static_cast<std::int64_t>(image->size.height)) ||
        image->bytes.size() != static_cast<std::size_t>(image->size.width * image->size.height) * 4) {
      return std::nullopt;
    }
    return image;
  }

 protected:
  virtual std::optional<Image> doDecode(std::span<const std::uint8_t> bytes) = 0;
};

}  // namespace vantu
