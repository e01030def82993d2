#include "platforms/linux/linux_platform.h"

#include "platforms/store/sqlite_preferences.h"

namespace vantu::linux_platform {

void StreamConsole::write(std::string_view line) {
  flockfile(stream_);
  std::fwrite(line.data(), 1, line.size(), stream_);
  std::fputc('\n', stream_);
  std::fflush(stream_);
  funlockfile(stream_);
}

LinuxPlatform makeLinuxPlatform(LinuxPlatformOptions options) {
  LinuxPlatform result;
  result.dispatch = std::make_shared<LinuxDispatch>(std::move(options.mainContext));
  result.loop = result.dispatch->loop();

  LinuxDeviceFacts::Options facts;
  facts.bundleInfo = std::move(options.bundleInfo);
  facts.osReleasePaths = std::move(options.osReleasePaths);

  auto platform = std::make_shared<Platform>();
  platform->dispatch = result.dispatch;
  platform->application = std::make_shared<Application>();
  platform->console = std::make_shared<StreamConsole>();
  platform->device = std::make_shared<LinuxDeviceFacts>(std::move(facts));
  platform->images = nullptr;
  platform->notificationCenter = std::make_shared<BasicNotificationCenter>();
  platform->reachability = std::make_shared<LinuxReachability>();
  if (!options.dataDirectory.empty()) {
    platform->preferences =
        std::make_shared<store::SqlitePreferences>(store::SqlitePreferencesOptions{options.dataDirectory, {}});
  }
  result.platform = std::move(platform);
  return result;
}

}  // namespace vantu::linux_platform
