#pragma once
// The platform a GTK host installs once, before it makes any container:
// the Linux platform with its main queue on GLib's main context (the one
// GTK runs), so bridge work, GTK and WebKit share the main thread, and the
// container's dialogs (permissions, owner authentication, pickers). It also
// connects the environment: the store and keyboard services, and the one
// view-controller provider that hands each page's push to the container the
// page is in.
//
//   auto host = vantu::gtk::HostPlatform::install({.dataDirectory = dir});
//   if (!host) return 1;  // no display
//   ... make containers, run GTK's main loop ...
//
// Destroy it after the last container.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "vantu/linux/host_platform_options.h"
#include "vantu/platform/platform.h"
#include "vantu/platform/view_controller.h"

namespace vantu::gtk {

class Container;

class HostPlatform {
 public:
  struct Options : linux_platform::HostPlatformOptions {
    /// A GStreamer source description used as the camera (for example
    /// "videotestsrc"); the listed cameras when empty.
    std::string cameraSource;
    /// Called with the built platform before it is installed: a host may
    /// replace ports (an HTTP transport of its own, simulated services).
    std::function<void(Platform&)> adjust;
  };

  /// Initialises GTK when needed, builds and installs the platform. Null
  /// when there is no display. Call once, on the main thread.
  static std::unique_ptr<HostPlatform> install(Options options);
  ~HostPlatform();
  HostPlatform(const HostPlatform&) = delete;
  HostPlatform& operator=(const HostPlatform&) = delete;

  const std::filesystem::path& dataDirectory() const;

  /// Answers picker requests without their dialogs (scripted runs and
  /// tests): `script` returns whether it took the presented picker. With
  /// `scriptsCamera` the camera counts as present.
  using PickerScript = std::function<bool(const std::shared_ptr<ViewController>&)>;
  void scriptPickers(PickerScript script, bool scriptsCamera);

  /// Runs GLib's main context until `done()` holds (checked after every
  /// event) or `timeout` has passed; whether `done()` held. For programs
  /// and checks without a GtkApplication of their own.
  static bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout);

 private:
  friend class Container;
  struct State;
  explicit HostPlatform(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace vantu::gtk
