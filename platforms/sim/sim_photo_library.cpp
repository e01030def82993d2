#include "platforms/sim/sim_photo_library.h"

#include <fstream>

#include "vantu/core/image_decoder.h"

namespace vantu::sim {

void SimPhotoLibrary::doCreateAsset(Bytes encodedImage, Completion completion) {
  auto image = decodeImage(encodedImage.data);
  bool saved = false;
  if (image && !failSaves) {
    std::error_code ignored;
    std::filesystem::create_directories(folder_, ignored);
    std::ofstream out(folder_ / ("IMG_" + std::to_string(++saved_)), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(encodedImage.data.data()),
              static_cast<std::streamsize>(encodedImage.data.size()));
    saved = static_cast<bool>(out);
  }
  if (saved) {
    log_->record(Dict{{"effect", "photoLibrarySave"},
                      {"width", static_cast<std::int64_t>(image->size.width)},
                      {"height", static_cast<std::int64_t>(image->size.height)}});
  } else {
    log_->record(Dict{{"effect", "photoLibrarySaveFailed"}});
  }
  dispatch_->main()->async([completion = std::move(completion), saved] {
    completion(saved, saved ? std::nullopt
                            : std::optional<PlatformError>(PlatformError{"PhotoLibraryErrorDomain", -1,
                                                                         "The operation couldn’t be completed."}));
  });
}

}  // namespace vantu::sim
