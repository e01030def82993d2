#include "vantu/gtk/host_platform.h"

#include "platforms/gtk/container_application.h"
#include "platforms/gtk/container_directory.h"
#include "platforms/gtk/glib_main_context.h"
#include "platforms/gtk/gtk_dialogs.h"
#include "platforms/gtk/gtk_platform.h"
#include "platforms/gtk/host_platform_state.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/runtime/environment_services.h"

namespace vantu::gtk {

std::unique_ptr<HostPlatform> HostPlatform::install(Options options) {
  linux_platform::LinuxPlatformOptions linuxOptions;
  linuxOptions.bundleInfo = std::move(options.bundleInfo);
  linuxOptions.dataDirectory = options.dataDirectory;
  linuxOptions.documentsDirectory = std::move(options.documentsDirectory);
  linuxOptions.picturesDirectory = std::move(options.picturesDirectory);
  auto bundle = makeGtkPlatform(std::move(linuxOptions));
  if (!bundle) return nullptr;
  auto state = std::make_unique<State>();
  state->application = std::dynamic_pointer_cast<ContainerApplication>(bundle->platform->application);
  if (state->application) state->application->setCameraSource(std::move(options.cameraSource));
  if (options.adjust) options.adjust(*bundle->platform);
  installPlatform(bundle->platform);
  connectEnvironmentServices();
  state->directory = std::make_shared<ContainerDirectory>();
  Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(state->directory, nullptr, nullptr));
  state->dataDirectory = std::move(options.dataDirectory);
  state->bundle = std::move(*bundle);
  return std::unique_ptr<HostPlatform>(new HostPlatform(std::move(state)));
}

HostPlatform::HostPlatform(std::unique_ptr<State> state) : state_(std::move(state)) {}

HostPlatform::~HostPlatform() {
  // The platform stays installed: completions still under way may reach its
  // ports while the process winds down.
  setPickerScript({});
  Laizaxlu::shared().setupWith(nullptr);
}

const std::filesystem::path& HostPlatform::dataDirectory() const { return state_->dataDirectory; }

void HostPlatform::scriptPickers(PickerScript script, bool scriptsCamera) {
  if (state_->application) state_->application->setCameraScripted(script && scriptsCamera);
  setPickerScript(std::move(script));
}

bool HostPlatform::runUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout) {
  return runMainContextUntil(done, std::chrono::duration_cast<Duration>(timeout));
}

}  // namespace vantu::gtk
