#include "platforms/gtk/gtk_platform.h"

#include <gtk/gtk.h>

#include "platforms/gtk/container_application.h"
#include "platforms/gtk/glib_main_context.h"

namespace vantu::gtk {

std::optional<linux_platform::LinuxPlatform> makeGtkPlatform(linux_platform::LinuxPlatformOptions options) {
  if (!gtk_is_initialized() && !gtk_init_check()) return std::nullopt;
  options.mainContext = std::make_shared<GLibMainContext>();
  auto bundle = linux_platform::makeLinuxPlatform(std::move(options));
  bundle.platform->application = std::make_shared<ContainerApplication>(bundle.dispatch);
  return bundle;
}

}  // namespace vantu::gtk
