// Device facts on Linux: os-release and locale parsing as pure functions,
// then the facts object over a prepared os-release file.

#include "platforms/linux/linux_device_facts.h"

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <optional>
#include <string>

namespace vantu::linux_platform {
namespace {

using Text = std::optional<std::string>;

TEST(OsRelease, VersionIdIsReadUnquoted) {
  const std::pair<const char*, Text> cases[] = {
      {"PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nVERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\nID=debian\n", "12"},
      {"ID=fedora\nVERSION_ID=40\n", "40"},
      {"VERSION_ID='22.04'\n", "22.04"},
      {"VERSION_ID=\"1.0 \\\"beta\\\" \\$x \\\\ \\n\"\n", "1.0 \"beta\" $x \\ \\n"},  // escapes in double quotes
      {"ID=x\r\nVERSION_ID=\"3.19\"\r", "3.19"},                      // CR LF, no trailing newline
      {"# VERSION_ID=9\n\n  \nVERSION_ID=10\n", "10"},                  // comments and blank lines
      {"VERSION_ID=1\nVERSION_ID=2\n", "2"},                            // the later assignment wins
      {"VERSION_ID_LIKE=5\nXVERSION_ID=6\nVERSION=7\n", std::nullopt},  // similar keys
      {"NAME=Arch Linux\nID=arch\n", std::nullopt},
      {"VERSION_ID=\"\"\n", std::nullopt},
      {"VERSION_ID=\"12\n", std::nullopt},  // unterminated quote
      {"", std::nullopt}};
  for (const auto& [text, version] : cases) EXPECT_EQ(osReleaseVersionId(text), version) << text;
  EXPECT_EQ(unquoteOsReleaseValue("\"a b\"'c d'e"), Text("a bc de"));
  EXPECT_EQ(unquoteOsReleaseValue("12 # a comment"), Text("12"));
  EXPECT_EQ(unquoteOsReleaseValue("'it''s'"), Text("its"));
  EXPECT_EQ(unquoteOsReleaseValue("'open"), std::nullopt);
}

TEST(Locale, TheLanguageIsTheLeadingCodeOfTheFirstSetVariable) {
  const std::pair<const char*, Text> cases[] = {
      {"de_DE.UTF-8", "de"}, {"en_US", "en"}, {"fr", "fr"}, {"sr_RS@latin", "sr"}, {"ca_ES.UTF-8@valencia", "ca"},
      {"fil_PH", "fil"}, {"ast_ES.utf8", "ast"}, {"EN_gb", "en"}, {"pt.UTF-8", "pt"}, {"C", std::nullopt},
      {"C.UTF-8", std::nullopt}, {"POSIX", std::nullopt}, {"", std::nullopt}, {"e1_XX", std::nullopt},
      {"_DE", std::nullopt}, {"abcd_EF", std::nullopt}};
  for (const auto& [locale, language] : cases) EXPECT_EQ(languageCodeOfLocale(locale), language) << locale;
  EXPECT_EQ(messagesLocale("de_DE.UTF-8", "fr_FR", "en_US"), "de_DE.UTF-8");
  EXPECT_EQ(messagesLocale("", "fr_FR", "en_US"), "fr_FR");
  EXPECT_EQ(messagesLocale(nullptr, nullptr, "en_US"), "en_US");
  EXPECT_EQ(messagesLocale(nullptr, "", ""), "");
  EXPECT_EQ(messagesLocale(nullptr, nullptr, nullptr), "");
}

class LinuxDeviceFactsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/vantu-os-release-XXXXXX";
    int fd = mkstemp(pattern);
    ASSERT_GE(fd, 0);
    close(fd);
    path = pattern;
  }
  void TearDown() override { unlink(path.c_str()); }
  void write(const std::string& text) { std::ofstream(path) << text; }
  std::string path;
  struct utsname names {};
};

TEST_F(LinuxDeviceFactsTest, FactsComeFromUnameOsReleaseAndTheGivenBundle) {
  ASSERT_EQ(uname(&names), 0);
  write("NAME=\"Test OS\"\nVERSION_ID=\"7.1\"\n");
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
  write("NAME=Rolling\n");
  LinuxDeviceFacts::Options bare;
  bare.osReleasePaths = {path};
  EXPECT_EQ(LinuxDeviceFacts(bare).systemVersion(), names.release);
  bare.osReleasePaths = {"/nonexistent/os-release"};
  EXPECT_EQ(LinuxDeviceFacts(bare).systemVersion(), names.release);
  EXPECT_FALSE(LinuxDeviceFacts(bare).bundleInfo().has_value());
}

TEST_F(LinuxDeviceFactsTest, TheLanguageFollowsTheEnvironmentAtConstruction) {
  const char* names[] = {"LC_ALL", "LC_MESSAGES", "LANG"};
  Text saved[3];
  for (int i = 0; i < 3; ++i) saved[i] = std::getenv(names[i]) ? Text(std::getenv(names[i])) : std::nullopt;
  unsetenv("LC_ALL");
  setenv("LC_MESSAGES", "", 1);
  setenv("LANG", "de_DE.UTF-8", 1);
  EXPECT_EQ(LinuxDeviceFacts().languageCode(), Text("de"));
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(LinuxDeviceFacts().languageCode(), std::nullopt);
  for (int i = 0; i < 3; ++i) saved[i] ? setenv(names[i], saved[i]->c_str(), 1) : unsetenv(names[i]);
}

}  // namespace
}  // namespace vantu::linux_platform
