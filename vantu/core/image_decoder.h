#pragma once
// Decoding image files into the library's `Image` (8-bit RGBA pixels), for
// the bridges that receive pictures from pages.
//
// Only PNG, JPEG, GIF (its first frame) and BMP are read, with stb_image;
// any other format, corrupt data, and pictures larger than the limits below
// give nothing. The limits are checked from the file's header before any
// pixel memory is taken, so a small hostile file cannot claim gigabytes, and
// a few checks of the file's structure run first to keep stb_image (2.27 on
// Debian 12) away from inputs it mishandles (docs/architecture.md, "Images
// from pages"). Truncated files give nothing, except a GIF cut inside its
// image data, which is read as browsers show it (the rest transparent).

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

#include "vantu/platform/images.h"

namespace vantu {

/// The largest width or height accepted, in pixels.
inline constexpr std::int64_t kMaxDecodedImageSide = 16384;
/// The largest pixel count accepted (width * height): 32 megapixels, that
/// is 128 MiB of RGBA.
inline constexpr std::int64_t kMaxDecodedImagePixels = std::int64_t{1} << 25;

/// The picture in `bytes`, or nothing when they are not a whole PNG, JPEG,
/// GIF or BMP file within the limits. Never throws and never reads outside
/// `bytes`. The image's size is its pixel size (scale 1); its name is empty.
std::optional<Image> decodeImage(std::span<const std::uint8_t> bytes);

/// The picture in the file at `path`, as `decodeImage` reads it; nothing
/// when the file cannot be read either.
std::optional<Image> decodeImageFile(const std::filesystem::path& path);

}  // namespace vantu
