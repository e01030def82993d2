#pragma once
// The platform bundle of the GTK container: the Linux bundle with its main
// queue on GLib's main context (the one GTK runs), so bridge work, GTK and
// WebKit share the main thread. Permission questions, the settings page and
// the owner-authentication password prompt are GTK windows (gtk_consent.h,
// gtk_password_prompt.h) unless the options bring their own, and positions
// come from GeoClue, whose client runs on that main context. Its
// application object is the container's (container_application.h: the
// image picker's sources, and the settings page).

#include "platforms/linux/linux_platform.h"

namespace vantu::gtk {

/// Initialises GTK when needed (false when there is no display) and builds
/// the bundle; the caller installs `platform`. Call on the main thread.
std::optional<linux_platform::LinuxPlatform> makeGtkPlatform(linux_platform::LinuxPlatformOptions options);

}  // namespace vantu::gtk
