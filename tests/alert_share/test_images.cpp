#include "tests/alert_share/test_images.h"

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

#include "vantu/value/base64.h"

namespace vantu::testing_support {
namespace {

void appendTo(void* context, void* data, int size) {
  auto* out = static_cast<Bytes8*>(context);
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  out->insert(out->end(), bytes, bytes + size);
}

void put32be(Bytes8& out, std::uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(v >> shift));
}

void put32le(Bytes8& out, std::uint32_t v) {
  for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<std::uint8_t>(v >> shift));
}

void put16le(Bytes8& out, std::uint16_t v) {
  out.push_back(static_cast<std::uint8_t>(v));
  out.push_back(static_cast<std::uint8_t>(v >> 8));
}

}  // namespace

Bytes8 solidPixels(int w, int h, Rgba color) {
  Bytes8 pixels;
  for (int i = 0; i < w * h; ++i) pixels.insert(pixels.end(), {color.r, color.g, color.b, color.a});
  return pixels;
}

Bytes8 quadrantPixels() {
  return {255, 0, 0, 255, 0, 255, 0, 255,  //
          0, 0, 255, 255, 255, 255, 255, 255};
}

Bytes8 encodePng(int w, int h, const Bytes8& rgba) {
  Bytes8 out;
  stbi_write_png_to_func(appendTo, &out, w, h, 4, rgba.data(), w * 4);
  return out;
}

Bytes8 encodeJpeg(int w, int h, const Bytes8& rgba, int quality) {
  Bytes8 out;
  stbi_write_jpg_to_func(appendTo, &out, w, h, 4, rgba.data(), quality);
  return out;
}

Bytes8 encodeBmp(int w, int h, const Bytes8& rgba) {
  Bytes8 out;
  stbi_write_bmp_to_func(appendTo, &out, w, h, 4, rgba.data());
  return out;
}

Bytes8 encodeTga(int w, int h, const Bytes8& rgba) {
  Bytes8 out;
  stbi_write_tga_to_func(appendTo, &out, w, h, 4, rgba.data());
  return out;
}

Bytes8 encodeHdr(int w, int h) {
  std::vector<float> pixels(static_cast<std::size_t>(w * h * 3), 0.5f);
  Bytes8 out;
  stbi_write_hdr_to_func(appendTo, &out, w, h, 3, pixels.data());
  return out;
}

Bytes8 tinyGif() {
  return {
      'G', 'I', 'F', '8', '9', 'a',        // header
      0x02, 0x00, 0x01, 0x00,              // screen 2 x 1
      0x80, 0x00, 0x00,                    // global colour table of 2 entries, background 0, no aspect
      0xFF, 0x00, 0x00, 0x00, 0x00, 0xFF,  // red, blue
      0x2C, 0x00, 0x00, 0x00, 0x00,        // image at (0, 0)
      0x02, 0x00, 0x01, 0x00, 0x00,        // 2 x 1, no local table
      0x02,                                // LZW minimum code size
      0x02, 0x44, 0x0A,                    // codes clear, 0, 1, end (3 bits each)
      0x00,                                // end of image data
      0x3B,                                // trailer
  };
}

Bytes8 pngClaiming(std::uint32_t w, std::uint32_t h) {
  // A real image's body under a header that lies: the IHDR of a 1 x 1 PNG
  // with its size rewritten (stb_image does not check chunk CRCs).
  Bytes8 png = encodePng(1, 1, solidPixels(1, 1, {1, 2, 3, 255}));
  Bytes8 size;
  put32be(size, w);
  put32be(size, h);
  std::copy(size.begin(), size.end(), png.begin() + 16);  // 8 signature + 4 length + 4 "IHDR"
  return png;
}

Bytes8 bmpClaiming(std::int32_t w, std::int32_t h) {
  Bytes8 out{'B', 'M'};
  put32le(out, 14 + 40 + 16);  // file size (a lie as well)
  put32le(out, 0);
  put32le(out, 14 + 40);  // pixel data offset
  put32le(out, 40);       // BITMAPINFOHEADER
  put32le(out, static_cast<std::uint32_t>(w));
  put32le(out, static_cast<std::uint32_t>(h));
  put16le(out, 1);   // planes
  put16le(out, 32);  // bits per pixel
  put32le(out, 0);   // BI_RGB
  for (int i = 0; i < 5; ++i) put32le(out, 0);
  for (int i = 0; i < 16; ++i) out.push_back(0x7F);
  return out;
}

std::string base64Of(const Bytes8& bytes) { return base64::encode(bytes); }

}  // namespace vantu::testing_support
