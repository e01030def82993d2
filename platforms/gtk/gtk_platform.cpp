#include "platforms/gtk/gtk_platform.h"

#include <gtk/gtk.h>

#include "platforms/gtk/container_application.h"
#include "platforms/gtk/glib_main_context.h"
#include "platforms/gtk/gtk_consent.h"
#include "platforms/gtk/gtk_password_prompt.h"
#ifdef VANTU_HAVE_GEOCLUE
#include "platforms/linux/geoclue_position.h"
#endif

namespace vantu::gtk {
namespace {

/// The name the permission dialogs give the host app: its bundle's display
/// name or name, else GLib's application name.
std::string appNameFor(const linux_platform::LinuxPlatformOptions& options) {
  if (options.bundleInfo) {
    for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
      if (auto name = options.bundleInfo->getString(key); name && !name->empty()) return *name;
    }
  }
  const char* name = g_get_application_name();
  return name && *name ? name : "vantu-h5";
}

}  // namespace

std::optional<linux_platform::LinuxPlatform> makeGtkPlatform(linux_platform::LinuxPlatformOptions options) {
  if (!gtk_is_initialized() && !gtk_init_check()) return std::nullopt;
  options.mainContext = std::make_shared<GLibMainContext>();
  const std::string appName = appNameFor(options);
  if (!options.consentPrompt) options.consentPrompt = std::make_shared<GtkConsentPrompt>(appName);
  if (!options.openSettings) {
    options.openSettings = [appName](const std::shared_ptr<linux_platform::PermissionStore>& store) {
      openSettingsPage(store, appName);
    };
  }
  if (!options.passwordPrompt) options.passwordPrompt = std::make_shared<GtkPasswordPrompt>();
#ifdef VANTU_HAVE_GEOCLUE
  if (!options.positionSource) {
    // The client lives as long as the location services that read it.
    auto geoclue = std::make_shared<linux_platform::GeocluePosition>();
    options.positionSource = [geoclue] { return geoclue->lastKnown(); };
  }
#endif
  auto bundle = linux_platform::makeLinuxPlatform(std::move(options));
  bundle.platform->application = std::make_shared<ContainerApplication>(bundle.dispatch, bundle.settingsPage);
  return bundle;
}

}  // namespace vantu::gtk
