#include "platforms/gtk/gtk_platform.h"

#include <gtk/gtk.h>

#include "platforms/gtk/glib_main_context.h"
#include "platforms/gtk/gtk_password_prompt.h"

namespace vantu::gtk {

std::optional<linux_platform::LinuxPlatform> makeGtkPlatform(linux_platform::LinuxPlatformOptions options) {
  if (!gtk_is_initialized() && !gtk_init_check()) return std::nullopt;
  options.mainContext = std::make_shared<GLibMainContext>();
  if (!options.passwordPrompt) options.passwordPrompt = std::make_shared<GtkPasswordPrompt>();
  return linux_platform::makeLinuxPlatform(std::move(options));
}

}  // namespace vantu::gtk
