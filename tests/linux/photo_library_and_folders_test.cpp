// The Linux photo library keeps only real pictures, under fresh names; the
// documents directory follows the options, then the XDG data home; the
// standard-output console writes each line with a newline.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <fstream>

#include "platforms/linux/linux_photo_library.h"
#include "platforms/linux/linux_platform.h"

namespace vantu::linux_platform {
namespace {

namespace fs = std::filesystem;

/// A 1 x 1 BMP (24 bits per pixel).
Bytes onePixelBmp() {
  return Bytes{std::vector<std::uint8_t>{'B', 'M', 58, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0,
                                        0, 0, 1, 0, 24, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0x13, 0x0B, 0, 0, 0x13, 0x0B, 0, 0,
                                        0, 0, 0, 0, 0, 0, 0, 0, 10, 20, 30, 0}};
}

TEST(LinuxPhotoLibrary, SavesPicturesUnderFreshNamesAndRefusesAnythingElse) {
  const fs::path folder = fs::temp_directory_path() / ("vantu-pictures-" + std::to_string(::getpid()));
  fs::remove_all(folder);
  LinuxPhotoLibrary library(folder);
  std::vector<bool> answers;
  for (const Bytes& data : {onePixelBmp(), onePixelBmp(), Bytes{{'n', 'o', 'p', 'e'}}}) {
    library.createAsset(data, [&](bool success, std::optional<PlatformError>) { answers.push_back(success); });
  }
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
struct ScopedEnv {
  ScopedEnv(const char* name, const char* value) : name(name) {
    if (const char* was = std::getenv(name)) old = was;
    ::setenv(name, value, 1);
  }
  ~ScopedEnv() { old ? ::setenv(name, old->c_str(), 1) : ::unsetenv(name); }
  const char* name;
  std::optional<std::string> old;
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

TEST(StreamConsole, WritesEachLineWithANewline) {
  std::FILE* file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  StreamConsole console(file);
  for (const char* line : {"first line", "", "third"}) console.printLine(line);
  std::rewind(file);
  char buffer[64] = {};
  auto got = std::fread(buffer, 1, sizeof buffer - 1, file);
  std::fclose(file);
  EXPECT_EQ(std::string(buffer, got), "first line\n\nthird\n");
}

}  // namespace
}  // namespace vantu::linux_platform
