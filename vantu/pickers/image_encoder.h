#pragma once
// Encoding the library's `Image` (8-bit RGBA) into image files, for
// camera captures. stb_image_write from Debian's libstb-dev.

#include <cstdint>
#include <vector>

#include "vantu/platform/images.h"

namespace vantu {

/// JPEG at `quality` from 0 (smallest) to 1 (best); empty when the image
/// has no pixels or its bytes do not match its size.
std::vector<std::uint8_t> encodeJpeg(const Image& image, double quality);
/// PNG; empty in the same cases.
std::vector<std::uint8_t> encodePng(const Image& image);

}  // namespace vantu
