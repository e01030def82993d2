#pragma once
// The photo library on Linux: a pictures folder. Each picture is checked by
// decoding it and written under a fresh name ("IMG_" and 7 random
// characters, with the extension of its format); nothing is overwritten.

#include <filesystem>

#include "vantu/platform/photo_library.h"

namespace vantu::linux_platform {

class LinuxPhotoLibrary : public PhotoLibrary {
 public:
  explicit LinuxPhotoLibrary(std::filesystem::path folder) : folder_(std::move(folder)) {}
  const std::filesystem::path& folder() const { return folder_; }

 protected:
  /// Answers on the calling thread.
  void doCreateAsset(Bytes encodedImage, Completion completion) override;

 private:
  std::filesystem::path folder_;
};

}  // namespace vantu::linux_platform
