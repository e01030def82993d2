#include "vantu/core/image_decoder.h"

#include <fstream>
#include <iterator>
#include <vector>

#include "vantu/platform/platform.h"

namespace vantu {

std::optional<Image> decodeImage(std::span<const std::uint8_t> bytes) {
  const auto& decoder = platform().imageDecoder;
  if (!decoder) return std::nullopt;
  return decoder->decode(bytes);
}

std::optional<Image> decodeImageFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  return decodeImage(bytes);
}

}  // namespace vantu
