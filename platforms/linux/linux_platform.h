#pragma once
// The Linux platform bundle: real dispatch (an event loop for the main
// queue, a worker thread per serial queue), device facts from uname,
// os-release and the locale environment, reachability over rtnetlink, a
// thread-safe notification centre, the console on standard output and a
// plain application model, HTTP on libcurl (platforms/curl), a documents
// directory and a pictures folder for the photo library. There is no image
// store yet: `images` is null, and the library treats a missing image as
// "the application has none". With a data directory, permissions are kept
// in a permission store there (the authorisation and location ports read
// it); without one there is no authorisation port, and bridges that need
// one answer as if access were restricted. Owner authentication goes
// through Linux-PAM with the password prompt the host supplies; reverse
// geocoding always fails (see linux_geocoder.h).

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platforms/linux/consent_prompt.h"
#include "platforms/linux/linux_device_facts.h"
#include "platforms/linux/linux_dispatch.h"
#include "platforms/common/basic_notification_center.h"
#include "platforms/linux/linux_reachability.h"
#include "platforms/linux/permission_store.h"
#include "platforms/linux/pam_owner_authentication.h"
#include "platforms/linux/password_prompt.h"
#include "vantu/platform/platform.h"

namespace vantu::linux_platform {

/// Writes each line, followed by a newline, to a stdio stream (standard
/// output by default), one whole line at a time across threads.
class StreamConsole : public Console {
 public:
  explicit StreamConsole(std::FILE* stream = stdout) : stream_(stream) {}

 protected:
  void doPrintLine(std::string_view line) override;

 private:
  std::FILE* stream_;
};

struct LinuxPlatformOptions {
  /// The host's bundle information (application version and the like).
  std::optional<Dict> bundleInfo;
  /// What runs the main queue; an `EventLoop` of the platform's own when
  /// absent.
  std::shared_ptr<MainContext> mainContext;
  /// os-release files tried in order for the system version.
  std::vector<std::string> osReleasePaths = {"/etc/os-release", "/usr/lib/os-release"};
  /// Where the preferences store (SQLite, platforms/store) keeps its
  /// database; no preferences port when empty.
  std::filesystem::path dataDirectory;
  /// The documents directory ("Documents" under the data directory, or
  /// under "$XDG_DATA_HOME/vantu-h5" (~/.local/share/vantu-h5) when there is
  /// none); no documents directory when nothing can be found.
  std::filesystem::path documentsDirectory;
  /// Where saved pictures go ("$HOME/Pictures" when empty); no photo
  /// library when nothing can be found.
  std::filesystem::path picturesDirectory;
  /// Asks the user for access to a protected resource; without one a
  /// request for an undecided resource is refused and nothing is stored.
  std::shared_ptr<ConsentPrompt> consentPrompt;
  /// Opens the host app's settings page (`Application::openSettingsPage`),
  /// given the permission store (null without a data directory). Nothing
  /// opens when absent.
  std::function<void(const std::shared_ptr<PermissionStore>&)> openSettings;
  /// The device's last position fix, for location services; never a fix
  /// when absent.
  std::function<std::optional<Coordinate>()> positionSource;
  /// Asks for the password when a page wants the device owner to
  /// authenticate; without one every such request fails as "no passcode
  /// set".
  std::shared_ptr<PasswordPrompt> passwordPrompt;
  /// The PAM service, configuration directory and attempt limit of owner
  /// authentication.
  PamOwnerAuthenticationOptions ownerAuthentication;
};

/// The documents directory `options` give (see LinuxPlatformOptions).
std::filesystem::path documentsDirectoryFor(const LinuxPlatformOptions& options);

struct LinuxPlatform {
  std::shared_ptr<Platform> platform;
  std::shared_ptr<LinuxDispatch> dispatch;
  /// The main event loop the host runs, or nullptr when a main context was
  /// given.
  std::shared_ptr<EventLoop> loop;
  /// The permission store in the data directory; null without one.
  std::shared_ptr<PermissionStore> permissions;
  /// What "Open Settings" opens: the shell's settings page over
  /// `permissions`; empty when the options gave none.
  std::function<void()> settingsPage;
};

/// Builds the bundle; the caller installs `platform` with `installPlatform`.
LinuxPlatform makeLinuxPlatform(LinuxPlatformOptions options = {});

}  // namespace vantu::linux_platform
