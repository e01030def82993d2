// Device facts (os-release and locale parsing, the facts object), the photo
// library, the documents directory and the standard-output console on Linux.

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "platforms/linux/linux_device_facts.h"
#include "platforms/linux/linux_geocoder.h"
#include "platforms/linux/linux_photo_library.h"
#include "platforms/linux/linux_platform.h"
#include "vantu/device/address_geo_code_handler.h"
#include "vantu/value/json.h"

namespace vantu::linux_platform {
namespace {

namespace fs = std::filesystem;
using Text = std::optional<std::string>;

/// Sets (or, given nullptr, unsets) an environment variable for one scope.
struct ScopedEnv {
  ScopedEnv(const char* name, const char* value) : name(name) {
    if (const char* was = std::getenv(name)) old = was;
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
  }
  ~ScopedEnv() { old ? ::setenv(name, old->c_str(), 1) : ::unsetenv(name); }
  const char* name;
  Text old;
};

TEST(OsRelease, VersionIdIsReadUnquoted) {
  const std::pair<const char*, Text> cases[] = {
      {"ID=fedora\nVERSION_ID=40\n", "40"},
      {"VERSION_ID='22.04'\n", "22.04"},
      {"VERSION_ID=\"1.0 \\\"beta\\\" \\$x \\\\ \\n\"\n", "1.0 \"beta\" $x \\ \\n"},  // escapes in double quotes
      {"ID=x\r\nVERSION_ID=\"3.19\"\r", "3.19"},                      // CR LF, no trailing newline
      {"# VERSION_ID=9\n\n  \nVERSION_ID=10\n", "10"},                  // comments and blank lines
      {"VERSION_ID=1\nVERSION_ID=2\n", "2"},                            // the later assignment wins
      {"VERSION_ID_LIKE=5\nXVERSION_ID=6\nVERSION=7\n", std::nullopt},  // similar keys
      {"VERSION_ID=\"\"\n", std::nullopt},
      {"VERSION_ID=\"12\n", std::nullopt}};  // unterminated quote
  for (const auto& [text, version] : cases) EXPECT_EQ(osReleaseVersionId(text), version) << text;
  EXPECT_EQ(unquoteOsReleaseValue("\"a b\"'c d'e"), Text("a bc de"));
  EXPECT_EQ(unquoteOsReleaseValue("12 # a comment"), Text("12"));
}

TEST(Locale, TheLanguageIsTheLeadingCodeOfTheFirstSetVariable) {
  const std::pair<const char*, Text> cases[] = {
      {"de_DE.UTF-8", "de"}, {"fr", "fr"}, {"sr_RS@latin", "sr"}, {"fil_PH", "fil"}, {"EN_gb", "en"},
      {"C", std::nullopt}, {"C.UTF-8", std::nullopt}, {"POSIX", std::nullopt}, {"", std::nullopt},
      {"e1_XX", std::nullopt}, {"abcd_EF", std::nullopt}};
  for (const auto& [locale, language] : cases) EXPECT_EQ(languageCodeOfLocale(locale), language) << locale;
  EXPECT_EQ(messagesLocale(nullptr, nullptr, nullptr), "");

  // The facts object reads the environment when it is made: LC_ALL, then LC_MESSAGES unless empty, then LANG.
  ScopedEnv all("LC_ALL", nullptr), messages("LC_MESSAGES", ""), lang("LANG", "de_DE.UTF-8");
  EXPECT_EQ(LinuxDeviceFacts().languageCode(), Text("de"));
  ScopedEnv c("LC_ALL", "C");
  EXPECT_EQ(LinuxDeviceFacts().languageCode(), std::nullopt);
}

TEST(LinuxDeviceFacts, FactsComeFromUnameOsReleaseAndTheGivenBundle) {
  struct utsname names {};
  ASSERT_EQ(uname(&names), 0);
  const auto path = fs::temp_directory_path() / ("vantu-os-release-" + std::to_string(::getpid()));
  std::ofstream(path) << "NAME=\"Test OS\"\nVERSION_ID=\"7.1\"\n";
  LinuxDeviceFacts::Options options;
  options.bundleInfo = Dict{{"CFBundleShortVersionString", "2.4.0"}};
  options.osReleasePaths = {"/nonexistent/os-release", path};
  LinuxDeviceFacts facts(options);
  EXPECT_EQ(facts.modelIdentifier(), names.machine);
  EXPECT_EQ(facts.systemVersion(), "7.1");
  EXPECT_EQ(facts.radioAccessTechnology(), std::nullopt);
  EXPECT_TRUE(facts.isRunningOnDevice());
  ASSERT_TRUE(facts.bundleInfo());
  EXPECT_EQ(facts.bundleInfo()->getString("CFBundleShortVersionString"), "2.4.0");

  // Without a VERSION_ID, or without any os-release file, the kernel release is the version.
  std::ofstream(path) << "NAME=Rolling\n";
  LinuxDeviceFacts::Options bare;
  bare.osReleasePaths = {path};
  EXPECT_EQ(LinuxDeviceFacts(bare).systemVersion(), names.release);
  fs::remove(path);
  EXPECT_EQ(LinuxDeviceFacts(bare).systemVersion(), names.release);
  EXPECT_FALSE(LinuxDeviceFacts(bare).bundleInfo().has_value());
}

TEST(LinuxPhotoLibrary, SavesPicturesUnderFreshNamesAndRefusesAnythingElse) {
  const fs::path folder = fs::temp_directory_path() / ("vantu-pictures-" + std::to_string(::getpid()));
  fs::remove_all(folder);
  LinuxPhotoLibrary library(folder);
  const Bytes bmp{std::vector<std::uint8_t>{  // 1 x 1, 24 bits per pixel
      'B', 'M', 58, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 24, 0, 0, 0, 0, 0, 4,
      0, 0, 0, 0x13, 0x0B, 0, 0, 0x13, 0x0B, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 20, 30, 0}};
  std::vector<bool> answers;
  for (const Bytes& data : {bmp, bmp, Bytes{{'n', 'o', 'p', 'e'}}}) {
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

TEST(LinuxGeocoder, ThePageIsToldThatReverseGeocodingIsUnavailable) {
  auto bundle = makeLinuxPlatform();
  installPlatform(bundle.platform);
  std::optional<std::string> answer;
  auto geocoding = std::make_shared<AddressGeoCodeHandler>();
  geocoding->handleWith({nullptr, Dict{{"latitude", 10.77}, {"longitude", 106.7}},
                         [&](const Value& value) { answer = json::write(value); }});
  EXPECT_TRUE(bundle.loop->runUntil([&] { return answer.has_value(); }, std::chrono::seconds(60)));
  EXPECT_EQ(answer,
            R"({"data":{"code":2,"message":")" + std::string(LinuxGeocoder::kUnavailableDescription) + R"("}})");
  installPlatform(nullptr);
}

TEST(StreamConsole, WritesEachLineWithANewline) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* file = open_memstream(&text, &size);
  StreamConsole console(file);
  for (const char* line : {"first line", "", "third"}) console.printLine(line);
  std::fclose(file);
  EXPECT_EQ(std::string(text, size), "first line\n\nthird\n");
  std::free(text);
}

}  // namespace
}  // namespace vantu::linux_platform
