#pragma once
// Device facts of a Linux machine, read once when the object is made:
// - model identifier: the machine field of `uname` (e.g. "x86_64"), up to
//   its first zero byte;
// - system version: VERSION_ID of os-release (/etc/os-release, else
//   /usr/lib/os-release), else the kernel release from `uname`;
// - language code: from the locale the environment names for messages
//   (LC_ALL, else LC_MESSAGES, else LANG), none for "C", "POSIX" or unset;
// - radio access technology: none (a desktop has no cellular radio the
//   library can ask);
// - running on a device: always (there is no simulator build on Linux);
// - bundle information: the dictionary the host gives at start-up.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/platform/device_facts.h"

namespace vantu::linux_platform {

/// The value of VERSION_ID in os-release text, quotes and escapes removed;
/// nothing when it is absent or empty. A later assignment wins, as in a
/// shell.
std::optional<std::string> osReleaseVersionId(std::string_view text);

/// One os-release value as written after '=': unquoted, "double" quoted
/// (with backslash escapes) or 'single' quoted. Nothing when malformed (an
/// unterminated quote).
std::optional<std::string> unquoteOsReleaseValue(std::string_view raw);

/// The locale name that governs messages: the first of LC_ALL, LC_MESSAGES
/// and LANG that is set and not empty (absent arguments are unset).
std::string messagesLocale(const char* lcAll, const char* lcMessages, const char* lang);

/// The language code of a locale name such as "de_DE.UTF-8@euro" ("de"):
/// the leading two or three ASCII letters, lower-cased, before any '_',
/// '.' or '@'. Nothing for "C", "POSIX", "C.UTF-8", empty or malformed names.
std::optional<std::string> languageCodeOfLocale(std::string_view locale);

class LinuxDeviceFacts : public DeviceFacts {
 public:
  struct Options {
    /// The host's bundle information (its version under
    /// "CFBundleShortVersionString", which the app-version bridges read).
    std::optional<Dict> bundleInfo;
    /// os-release files tried in order.
    std::vector<std::string> osReleasePaths = {"/etc/os-release", "/usr/lib/os-release"};
  };

  LinuxDeviceFacts() : LinuxDeviceFacts(Options{}) {}
  explicit LinuxDeviceFacts(Options options);

 protected:
  std::optional<Dict> doBundleInfo() const override { return bundleInfo_; }
  std::string doModelIdentifier() const override { return machine_; }
  std::string doSystemVersion() const override { return version_; }
  std::optional<std::string> doLanguageCode() const override { return language_; }
  std::optional<std::string> doRadioAccessTechnology() const override { return std::nullopt; }
  bool doIsRunningOnDevice() const override { return true; }

 private:
  std::optional<Dict> bundleInfo_;
  std::string machine_;
  std::string version_;
  std::optional<std::string> language_;
};

}  // namespace vantu::linux_platform
