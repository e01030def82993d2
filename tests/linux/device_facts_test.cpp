// Device facts on Linux: os-release and locale parsing as pure functions,
// then the facts object over a prepared os-release file.

#include "platforms/linux/linux_device_facts.h"

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstring>
#include <ostream>
#include <fstream>
#include <optional>
#include <string>

namespace vantu::linux_platform {
namespace {

using Text = std::optional<std::string>;

struct OsReleaseCase {
  const char* name;
  const char* text;
  Text version;
  friend void PrintTo(const OsReleaseCase& c, std::ostream* os) { *os << c.name; }
};

class OsReleaseVersion : public ::testing::TestWithParam<OsReleaseCase> {};

TEST_P(OsReleaseVersion, IsReadFromVersionId) { EXPECT_EQ(osReleaseVersionId(GetParam().text), GetParam().version); }

INSTANTIATE_TEST_SUITE_P(
    Cases, OsReleaseVersion,
    ::testing::Values(
        OsReleaseCase{"Debian", "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\n"
                                "VERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\nID=debian\n", "12"},
        OsReleaseCase{"Unquoted", "ID=fedora\nVERSION_ID=40\n", "40"},
        OsReleaseCase{"SingleQuoted", "VERSION_ID='22.04'\n", "22.04"},
        OsReleaseCase{"EscapesInDoubleQuotes", "VERSION_ID=\"1.0 \\\"beta\\\" \\$x \\\\ \\n\"\n",
                      "1.0 \"beta\" $x \\ \\n"},
        OsReleaseCase{"NoTrailingNewlineAndCrLf", "ID=x\r\nVERSION_ID=\"3.19\"\r", "3.19"},
        OsReleaseCase{"CommentsAndBlankLinesSkipped", "# VERSION_ID=9\n\n  \nVERSION_ID=10\n", "10"},
        OsReleaseCase{"LaterAssignmentWins", "VERSION_ID=1\nVERSION_ID=2\n", "2"},
        OsReleaseCase{"SimilarKeysIgnored", "VERSION_ID_LIKE=5\nXVERSION_ID=6\nVERSION=7\n", std::nullopt},
        OsReleaseCase{"Absent", "NAME=Arch Linux\nID=arch\n", std::nullopt},
        OsReleaseCase{"Empty", "VERSION_ID=\"\"\n", std::nullopt},
        OsReleaseCase{"UnterminatedQuote", "VERSION_ID=\"12\n", std::nullopt},
        OsReleaseCase{"EmptyText", "", std::nullopt}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(OsReleaseValue, QuotedPiecesJoinAndUnquotedTextEndsAtABlank) {
  EXPECT_EQ(unquoteOsReleaseValue("\"a b\"'c d'e"), Text("a bc de"));
  EXPECT_EQ(unquoteOsReleaseValue("12 # a comment"), Text("12"));
  EXPECT_EQ(unquoteOsReleaseValue("'it''s'"), Text("its"));
  EXPECT_EQ(unquoteOsReleaseValue("'open"), std::nullopt);
}

struct LocaleCase {
  const char* locale;
  Text language;
  friend void PrintTo(const LocaleCase& c, std::ostream* os) { *os << '"' << c.locale << '"'; }
};

class LocaleLanguage : public ::testing::TestWithParam<LocaleCase> {};

TEST_P(LocaleLanguage, IsTheLeadingLanguageCode) {
  EXPECT_EQ(languageCodeOfLocale(GetParam().locale), GetParam().language) << GetParam().locale;
}

INSTANTIATE_TEST_SUITE_P(Cases, LocaleLanguage,
                         ::testing::Values(LocaleCase{"de_DE.UTF-8", "de"}, LocaleCase{"en_US", "en"},
                                           LocaleCase{"fr", "fr"}, LocaleCase{"sr_RS@latin", "sr"},
                                           LocaleCase{"ca_ES.UTF-8@valencia", "ca"}, LocaleCase{"fil_PH", "fil"},
                                           LocaleCase{"ast_ES.utf8", "ast"}, LocaleCase{"EN_gb", "en"},
                                           LocaleCase{"pt.UTF-8", "pt"}, LocaleCase{"C", std::nullopt},
                                           LocaleCase{"C.UTF-8", std::nullopt}, LocaleCase{"POSIX", std::nullopt},
                                           LocaleCase{"", std::nullopt}, LocaleCase{"e1_XX", std::nullopt},
                                           LocaleCase{"_DE", std::nullopt}, LocaleCase{"abcd_EF", std::nullopt}));

TEST(MessagesLocale, TheFirstSetAndNonEmptyVariableWins) {
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
  EXPECT_FALSE(facts.modelIdentifier().empty());
  EXPECT_EQ(facts.systemVersion(), "7.1");
  EXPECT_EQ(facts.radioAccessTechnology(), std::nullopt);
  EXPECT_TRUE(facts.isRunningOnDevice());
  ASSERT_TRUE(facts.bundleInfo());
  EXPECT_EQ(facts.bundleInfo()->getString("CFBundleShortVersionString"), "2.4.0");
}

TEST_F(LinuxDeviceFactsTest, WithoutAVersionIdTheKernelReleaseIsTheVersion) {
  ASSERT_EQ(uname(&names), 0);
  write("NAME=Rolling\n");
  LinuxDeviceFacts::Options options;
  options.osReleasePaths = {path};
  EXPECT_EQ(LinuxDeviceFacts(options).systemVersion(), names.release);
  options.osReleasePaths = {"/nonexistent/os-release"};
  EXPECT_EQ(LinuxDeviceFacts(options).systemVersion(), names.release);
  EXPECT_FALSE(LinuxDeviceFacts(options).bundleInfo().has_value());
}

TEST_F(LinuxDeviceFactsTest, TheLanguageFollowsTheEnvironmentAtConstruction) {
  auto saved = [](const char* name) -> Text {
    const char* v = std::getenv(name);
    return v ? Text(v) : std::nullopt;
  };
  Text all = saved("LC_ALL"), messages = saved("LC_MESSAGES"), lang = saved("LANG");
  auto restore = [](const char* name, const Text& value) {
    if (value) {
      setenv(name, value->c_str(), 1);
    } else {
      unsetenv(name);
    }
  };
  unsetenv("LC_ALL");
  setenv("LC_MESSAGES", "", 1);
  setenv("LANG", "de_DE.UTF-8", 1);
  EXPECT_EQ(LinuxDeviceFacts().languageCode(), Text("de"));
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(LinuxDeviceFacts().languageCode(), std::nullopt);
  restore("LC_ALL", all);
  restore("LC_MESSAGES", messages);
  restore("LANG", lang);
}

}  // namespace
}  // namespace vantu::linux_platform
