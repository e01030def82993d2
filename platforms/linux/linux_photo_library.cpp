#include "platforms/linux/linux_photo_library.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "vantu/net/download_folder.h"
#include "platforms/common/pixbuf_image_decoder.h"
#include "platforms/common/write_all.h"

namespace vantu::linux_platform {
namespace {

constexpr int kNameAttempts = 8;

std::string_view extensionOf(const Bytes& image) {
  const auto& b = image.data;
  if (b.size() >= 2 && b[0] == 0xFF && b[1] == 0xD8) return ".jpg";
  if (b.size() >= 3 && b[0] == 'G' && b[1] == 'I' && b[2] == 'F') return ".gif";
  if (b.size() >= 2 && b[0] == 'B' && b[1] == 'M') return ".bmp";
  return ".png";
}

PlatformError failure(std::string description) {
  return PlatformError{"PhotoLibraryErrorDomain", -1, std::move(description)};
}

}  // namespace

void LinuxPhotoLibrary::doCreateAsset(Bytes encodedImage, Completion completion) {
  if (!PixbufImageDecoder().decode(encodedImage.data)) return completion(false, failure("The data is not a picture."));
  std::error_code ignored;
  std::filesystem::create_directories(folder_, ignored);
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    const auto path = folder_ / ("IMG_" + randomFileName(7) + std::string(extensionOf(encodedImage)));
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0644);
    if (fd < 0 && errno == EEXIST) continue;
    if (fd < 0) return completion(false, failure(std::strerror(errno)));
    const bool written = writeAll(fd, encodedImage.data.data(), encodedImage.data.size());
    const bool closed = ::close(fd) == 0;
    if (written && closed) return completion(true, std::nullopt);
    ::unlink(path.c_str());
    return completion(false, failure("The picture could not be written."));
  }
  completion(false, failure("No free name for the picture."));
}

}  // namespace vantu::linux_platform
