#pragma once
// What a host tells the Linux platform about itself: where the library may
// keep its files and what the host app is called. The platform is one per
// process; every mini-app's data lives under the one data directory, kept
// apart by its unique app id.

#include <filesystem>
#include <optional>

#include "vantu/value/value.h"

namespace vantu::linux_platform {

struct HostPlatformOptions {
  /// The host's bundle information (for example "CFBundleDisplayName",
  /// "CFBundleShortVersionString"): the app name the permission dialogs
  /// show and what the app-info bridges answer.
  std::optional<Dict> bundleInfo;
  /// Where the library keeps its files: the preferences database (one
  /// suite per mini-app, named by a hash of its app id), "permissions.json"
  /// (the host app's permission decisions) and "Documents". Without one
  /// nothing is stored and permissions cannot be granted.
  std::filesystem::path dataDirectory;
  /// Downloads and files pages save; "Documents" under the data directory
  /// when empty.
  std::filesystem::path documentsDirectory;
  /// Where pictures pages save go; "$HOME/Pictures" when empty.
  std::filesystem::path picturesDirectory;
};

}  // namespace vantu::linux_platform
