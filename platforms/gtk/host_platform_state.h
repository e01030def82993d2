#pragma once
// What a HostPlatform holds (vantu/gtk/host_platform.h), shared with the
// containers made on it.

#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "platforms/gtk/container_application.h"
#include "platforms/gtk/container_directory.h"
#include "platforms/linux/linux_platform.h"
#include "vantu/gtk/host_platform.h"

namespace vantu::gtk {

struct HostPlatform::State {
  linux_platform::LinuxPlatform bundle;
  std::shared_ptr<ContainerApplication> application;
  std::shared_ptr<ContainerDirectory> directory;
  std::filesystem::path dataDirectory;
  /// The app ids of the live containers.
  std::set<std::string> appIds;
};

}  // namespace vantu::gtk
