#pragma once
// The bundle of ports a platform provides. The library reads the installed
// bundle; tests and programs install one at start-up.

#include <filesystem>
#include <memory>

#include "vantu/platform/application.h"
#include "vantu/platform/authorization.h"
#include "vantu/platform/console.h"
#include "vantu/platform/device_facts.h"
#include "vantu/platform/device_owner_authentication.h"
#include "vantu/platform/dispatch.h"
#include "vantu/platform/file_system.h"
#include "vantu/platform/geocoder.h"
#include "vantu/platform/http_transport.h"
#include "vantu/platform/image_decoder.h"
#include "vantu/platform/images.h"
#include "vantu/platform/location_services.h"
#include "vantu/platform/notification_center.h"
#include "vantu/platform/photo_library.h"
#include "vantu/platform/preferences.h"
#include "vantu/platform/reachability.h"

namespace vantu {

struct Platform {
  std::shared_ptr<Dispatch> dispatch;
  std::shared_ptr<Application> application;
  std::shared_ptr<Console> console;
  std::shared_ptr<DeviceFacts> device;
  std::shared_ptr<ImageStore> images;
  std::shared_ptr<NotificationCenter> notificationCenter;
  std::shared_ptr<Reachability> reachability;
  /// Persistent named suites (the sandboxed key-value store); may be null.
  std::shared_ptr<Preferences> preferences;
  /// Authorisation of protected resources; may be null.
  std::shared_ptr<Authorization> authorization;
  /// The device's position and the app's authorisation to read it; may be null.
  std::shared_ptr<LocationServices> locationServices;
  /// Reverse geocoding; may be null.
  std::shared_ptr<Geocoder> geocoder;
  /// Device-owner authentication; may be null.
  std::shared_ptr<DeviceOwnerAuthentication> deviceOwnerAuthentication;
  /// HTTP transfers; may be null (then network bridges answer their failure).
  std::shared_ptr<HttpTransport> httpTransport;
  /// The user's photo library; may be null (then saving a picture fails).
  std::shared_ptr<PhotoLibrary> photoLibrary;
  /// Reads the pictures pages send; may be null (then no picture is read).
  std::shared_ptr<ImageDecoder> imageDecoder;
  /// Moves that must not replace a file, and files of the app's folders
  /// reached without following links; may be null (then such moves fail and
  /// the download folder is unavailable).
  std::shared_ptr<FileSystem> fileSystem;
  /// The user's documents directory; empty when the platform has none.
  std::filesystem::path documentsDirectory;
};

/// Installs `platform` for the whole process (replacing any earlier one).
void installPlatform(std::shared_ptr<Platform> platform);
/// The installed platform. Using the library before installing one is a
/// programming error and stops the process.
Platform& platform();
bool hasPlatform();

}  // namespace vantu
