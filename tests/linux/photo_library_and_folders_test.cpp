// The Linux photo library keeps only real pictures, under fresh names; the
// documents directory follows the options, then the XDG data home.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>

#include "platforms/linux/linux_photo_library.h"
#include "platforms/linux/linux_platform.h"

namespace vantu::linux_platform {
namespace {

namespace fs = std::filesystem;

/// A 1 x 1 BMP (24 bits per pixel).
Bytes onePixelBmp() {
  std::vector<std::uint8_t> b = {'B', 'M', 58, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0,
                                 1, 0, 24, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0x13, 0x0B, 0, 0, 0x13, 0x0B, 0, 0, 0, 0, 0, 0,
                                 0, 0, 0, 0, 10, 20, 30, 0};
  return Bytes{b};
}

TEST(LinuxPhotoLibrary, SavesPicturesUnderFreshNamesAndRefusesAnythingElse) {
  const fs::path folder = fs::temp_directory_path() / ("vantu-pictures-" + std::to_string(::getpid()));
  fs::remove_all(folder);
  LinuxPhotoLibrary library(folder);
  std::vector<bool> answers;
  auto record = [&](bool success, std::optional<PlatformError>) { answers.push_back(success); };
  library.createAsset(onePixelBmp(), record);
  library.createAsset(onePixelBmp(), record);
  library.createAsset(Bytes{{'n', 'o', 'p', 'e'}}, record);
  EXPECT_EQ(answers, (std::vector<bool>{true, true, false}));
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
    EXPECT_EQ(fs::file_size(entry.path()), 58u);
  }
  ASSERT_EQ(names.size(), 2u);
  EXPECT_NE(names[0], names[1]);
  for (const auto& name : names) EXPECT_TRUE(name.starts_with("IMG_") && name.ends_with(".bmp")) << name;
  fs::remove_all(folder);
}

/// Sets an environment variable for one scope.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    ::setenv(name, value, 1);
  }
  ~ScopedEnv() { old_ ? ::setenv(name_, old_->c_str(), 1) : ::unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST(LinuxPlatformFolders, DocumentsFollowTheOptionsThenTheDataHome) {
  LinuxPlatformOptions options;
  options.documentsDirectory = "/given/docs";
  EXPECT_EQ(documentsDirectoryFor(options), "/given/docs");
  options.documentsDirectory.clear();
  options.dataDirectory = "/data";
  EXPECT_EQ(documentsDirectoryFor(options), "/data/Documents");
  options.dataDirectory.clear();
  {
    ScopedEnv dataHome("XDG_DATA_HOME", "/xdg");
    EXPECT_EQ(documentsDirectoryFor(options), "/xdg/vantu-h5/Documents");
  }
  ScopedEnv dataHome("XDG_DATA_HOME", "relative");  // not absolute: ignored
  ScopedEnv home("HOME", "/home/u");
  EXPECT_EQ(documentsDirectoryFor(options), "/home/u/.local/share/vantu-h5/Documents");
}

}  // namespace
}  // namespace vantu::linux_platform
