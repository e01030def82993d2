#pragma once
// The device's position from GeoClue (the org.freedesktop.GeoClue2 system
// service), kept as the last known coordinate.
//
// Made on the thread that runs GLib's default main context (the GTK
// container's main thread), the source opens its own connection to the
// system bus, asks GeoClue's manager for a client, names itself with the
// desktop id and starts the client; every LocationUpdated signal replaces
// the last known coordinate. Every step is asynchronous and runs from that
// main context, so a host that never runs a GLib main loop simply never
// gets a fix. When the bus, the service or the permission is missing, the
// source prints one line and stays without a fix.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/location_services.h"

namespace vantu::linux_platform {

struct GeocluePositionOptions {
  /// The desktop id GeoClue's agent checks (the application's .desktop
  /// file name without the suffix).
  std::string desktopId = "vantu-h5";
  /// The bus to use; the system bus (DBUS_SYSTEM_BUS_ADDRESS or the
  /// standard socket) when empty.
  std::string busAddress;
  /// Where the one line about a failure goes; the library's diagnostics
  /// (the platform console) when empty.
  std::function<void(std::string_view)> report;
};

class GeocluePosition {
 public:
  enum class State { Starting, Running, Failed };

  explicit GeocluePosition(GeocluePositionOptions options = {});
  /// Stops the client and drops every pending step. Destroy it on the thread
  /// that made it.
  ~GeocluePosition();
  GeocluePosition(const GeocluePosition&) = delete;
  GeocluePosition& operator=(const GeocluePosition&) = delete;

  /// The last coordinate GeoClue gave, if any. Callable from any thread.
  std::optional<Coordinate> lastKnown() const;
  /// Where the start-up stands: starting, started (a fix may or may not
  /// have come yet) or given up.
  State state() const;

  struct Shared;

 private:
  std::shared_ptr<Shared> shared_;
};

}  // namespace vantu::linux_platform
