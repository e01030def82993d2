#include "vantu/pickers/image_encoder.h"

#include <algorithm>
#include <cmath>
#include <optional>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC  // private to this file
#include <stb/stb_image_write.h>

namespace vantu {
namespace {

struct PixelSize {
  int width = 0;
  int height = 0;
};

// The pixel size of an image whose bytes are whole RGBA rows; none otherwise.
std::optional<PixelSize> pixelSize(const Image& image) {
  const double w = std::round(image.size.width), h = std::round(image.size.height);
  if (w < 1 || h < 1 || w > 65535 || h > 65535) return std::nullopt;
  const auto width = static_cast<int>(w), height = static_cast<int>(h);
  if (image.bytes.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4) return std::nullopt;
  return PixelSize{width, height};
}

void appendBytes(void* context, void* data, int size) {
  auto* out = static_cast<std::vector<std::uint8_t>*>(context);
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  out->insert(out->end(), bytes, bytes + size);
}

}  // namespace

std::vector<std::uint8_t> encodeJpeg(const Image& image, double quality) {
  std::vector<std::uint8_t> out;
  auto size = pixelSize(image);
  if (!size) return out;
  const int stbQuality = static_cast<int>(std::lround(std::clamp(quality, 0.0, 1.0) * 99)) + 1;  // 1...100
  if (!stbi_write_jpg_to_func(appendBytes, &out, size->width, size->height, 4, image.bytes.data(), stbQuality)) out.clear();
  return out;
}

std::vector<std::uint8_t> encodePng(const Image& image) {
  std::vector<std::uint8_t> out;
  auto size = pixelSize(image);
  if (!size) return out;
  if (!stbi_write_png_to_func(appendBytes, &out, size->width, size->height, 4, image.bytes.data(), size->width * 4)) {
    out.clear();
  }
  return out;
}

}  // namespace vantu
