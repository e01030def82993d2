#include "platforms/sim/sim_images.h"

namespace vantu::sim {

Image simServerTakingTimeImage() {
  constexpr int kSide = 4;
  Image image{"nearby_servertakingtime", Size{kSide, kSide}, {}};
  image.bytes.reserve(kSide * kSide * 4);
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      std::uint8_t level = x == y ? 0x40 : 0xE0;
      image.bytes.insert(image.bytes.end(), {level, level, level, 0xFF});
    }
  }
  return image;
}

SimImageStore::SimImageStore() { add(simServerTakingTimeImage()); }

void SimImageStore::add(Image image) {
  auto name = image.name;
  images_[name] = std::make_shared<const Image>(std::move(image));
}

void SimImageStore::remove(std::string_view name) {
  if (auto it = images_.find(name); it != images_.end()) images_.erase(it);
}

std::shared_ptr<const Image> SimImageStore::doImageNamed(std::string_view name) const {
  auto it = images_.find(name);
  return it == images_.end() ? nullptr : it->second;
}

}  // namespace vantu::sim
