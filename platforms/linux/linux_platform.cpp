#include "platforms/linux/linux_platform.h"

#include <cstdlib>

#include "platforms/common/pixbuf_image_decoder.h"
#include "platforms/common/posix_file_system.h"
#include "platforms/curl/curl_transport.h"
#include "platforms/linux/linux_application.h"
#include "platforms/linux/linux_location_services.h"
#include "platforms/linux/linux_geocoder.h"
#include "platforms/linux/linux_photo_library.h"
#include "platforms/linux/stored_authorization.h"
#include "platforms/store/sqlite_preferences.h"

namespace vantu::linux_platform {

void StreamConsole::doPrintLine(std::string_view line) {
  flockfile(stream_);
  std::fwrite(line.data(), 1, line.size(), stream_);
  std::fputc('\n', stream_);
  std::fflush(stream_);
  funlockfile(stream_);
}

namespace {

std::filesystem::path environmentPath(const char* name) {
  const char* value = std::getenv(name);
  return value && *value == '/' ? std::filesystem::path(value) : std::filesystem::path();
}

std::filesystem::path picturesDirectoryFor(const LinuxPlatformOptions& options) {
  if (!options.picturesDirectory.empty()) return options.picturesDirectory;
  auto home = environmentPath("HOME");
  return home.empty() ? home : home / "Pictures";
}

}  // namespace

std::filesystem::path documentsDirectoryFor(const LinuxPlatformOptions& options) {
  if (!options.documentsDirectory.empty()) return options.documentsDirectory;
  if (!options.dataDirectory.empty()) return options.dataDirectory / "Documents";
  auto dataHome = environmentPath("XDG_DATA_HOME");
  if (dataHome.empty()) {
    auto home = environmentPath("HOME");
    if (home.empty()) return {};
    dataHome = home / ".local" / "share";
  }
  return dataHome / "vantu-h5" / "Documents";
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
  platform->console = std::make_shared<StreamConsole>();
  platform->device = std::make_shared<LinuxDeviceFacts>(std::move(facts));
  platform->images = nullptr;
  platform->notificationCenter = std::make_shared<BasicNotificationCenter>();
  platform->reachability = std::make_shared<LinuxReachability>();
  if (!options.dataDirectory.empty()) {
    platform->preferences =
        std::make_shared<store::SqlitePreferences>(store::SqlitePreferencesOptions{options.dataDirectory, {}});
  }
  if (!options.dataDirectory.empty()) {
    result.permissions = PermissionStore::open(
        options.dataDirectory, result.dispatch->makeSerialQueue("com.vantu.PermissionStore"), platform->console);
    platform->authorization =
        std::make_shared<StoredAuthorization>(result.permissions, result.dispatch, std::move(options.consentPrompt));
    platform->locationServices = LinuxLocationServices::make(result.permissions, platform->authorization,
                                                             result.dispatch, std::move(options.positionSource));
  }
  if (options.openSettings) {
    result.settingsPage = [open = std::move(options.openSettings), store = result.permissions] { open(store); };
  }
  platform->application = std::make_shared<LinuxApplication>(result.settingsPage);
  platform->httpTransport = std::make_shared<curl::CurlTransport>(result.dispatch);
  platform->fileSystem = std::make_shared<PosixFileSystem>();
  platform->imageDecoder = std::make_shared<PixbufImageDecoder>();
  platform->documentsDirectory = documentsDirectoryFor(options);
  if (auto pictures = picturesDirectoryFor(options); !pictures.empty()) {
    platform->photoLibrary = std::make_shared<LinuxPhotoLibrary>(std::move(pictures));
  }
  platform->geocoder = std::make_shared<LinuxGeocoder>(result.dispatch);
#ifdef VANTU_HAVE_PAM
  platform->deviceOwnerAuthentication = std::make_shared<PamOwnerAuthentication>(
      result.dispatch, std::move(options.passwordPrompt), std::move(options.ownerAuthentication));
#endif
  result.platform = std::move(platform);
  return result;
}

}  // namespace vantu::linux_platform
