#pragma once
// Small real image files for the tests, made at test time: PNG, JPEG, BMP,
// TGA and HDR through stb_image_write (Debian's libstb-dev), and a GIF
// assembled by hand.

#include <cstdint>
#include <string>
#include <vector>

namespace vantu::testing_support {

using Bytes8 = std::vector<std::uint8_t>;

struct Rgba {
  std::uint8_t r, g, b, a;
};

/// w * h pixels of `color`, RGBA row by row.
Bytes8 solidPixels(int w, int h, Rgba color);
/// A 2 x 2 picture: red, green / blue, white (all opaque).
Bytes8 quadrantPixels();

Bytes8 encodePng(int w, int h, const Bytes8& rgba);
Bytes8 encodeJpeg(int w, int h, const Bytes8& rgba, int quality = 95);
Bytes8 encodeBmp(int w, int h, const Bytes8& rgba);
Bytes8 encodeTga(int w, int h, const Bytes8& rgba);
Bytes8 encodeHdr(int w, int h);

/// A 2 x 1 GIF89a, written byte by byte: a red pixel then a blue one.
Bytes8 tinyGif();

/// A PNG signature and IHDR chunk that claim `w` x `h` (8-bit RGBA), then
/// a tiny IDAT and IEND: a file that lies about its size.
Bytes8 pngClaiming(std::uint32_t w, std::uint32_t h);
/// A 32-bit BMP header that claims `w` x `h`, with almost no pixel data.
Bytes8 bmpClaiming(std::int32_t w, std::int32_t h);

std::string base64Of(const Bytes8& bytes);

}  // namespace vantu::testing_support
