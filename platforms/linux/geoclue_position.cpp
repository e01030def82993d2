#include "platforms/linux/geoclue_position.h"

#include <geoclue.h>

#include <mutex>

#include "platforms/linux/gobject_ptr.h"
#include "vantu/core/diagnostics.h"

namespace vantu::linux_platform {
namespace {

constexpr const char* kService = "org.freedesktop.GeoClue2";
constexpr const char* kManagerPath = "/org/freedesktop/GeoClue2/Manager";
constexpr const char* kClientInterface = "org.freedesktop.GeoClue2.Client";

}  // namespace

struct GeocluePosition::Shared {
  GeocluePositionOptions options;
  std::weak_ptr<Shared> self;
  // Given back in the reverse order: client, manager, connection, cancellable.
  GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
  GObjectPtr<GDBusConnection> connection;
  GObjectPtr<GClueManager> manager;
  GObjectPtr<GClueClient> client;
  gulong updatedHandler = 0;

  mutable std::mutex mutex;
  std::optional<Coordinate> last;
  State state = State::Starting;

  void setState(State next) {
    std::lock_guard lock(mutex);
    state = next;
  }

  /// Prints the one line and gives up.
  void fail(const std::string& step, const GError* error) {
    setState(State::Failed);
    const std::string line =
        "vantu-h5: no position from GeoClue (" + step + "): " + (error ? error->message : "unknown error");
    if (options.report) {
      options.report(line);
    } else {
      printDiagnostic(line);
    }
  }
};

namespace {

using Shared = GeocluePosition::Shared;
using Step = void (*)(Shared&, GAsyncResult*);

/// What an asynchronous call carries to its completion: the state, kept
/// alive until then, and the step that goes on.
struct Pending {
  std::shared_ptr<Shared> shared;
  Step next;
};

gpointer pending(Shared& shared, Step next) { return new Pending{shared.self.lock(), next}; }

void resume(GObject*, GAsyncResult* result, gpointer data) {
  std::unique_ptr<Pending> step(static_cast<Pending*>(data));
  step->next(*step->shared, result);
}

/// True when the step can go on; reports the failure otherwise. Once the
/// source is destroyed (cancelled) nothing goes on and nothing is reported.
bool succeeded(Shared& shared, const char* step, const GErrorPtr& error) {
  if (!error) return !g_cancellable_is_cancelled(shared.cancellable.get());
  if (!g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) shared.fail(step, error.get());
  return false;
}

void locationLoaded(Shared& shared, GAsyncResult* result) {
  GErrorPtr error;
  GObjectPtr<GClueLocation> location(gclue_location_proxy_new_finish(result, outParam(error)));
  if (!succeeded(shared, "reading the location", error)) return;
  GVariantPtr latitude(g_dbus_proxy_get_cached_property(G_DBUS_PROXY(location.get()), "Latitude"));
  GVariantPtr longitude(g_dbus_proxy_get_cached_property(G_DBUS_PROXY(location.get()), "Longitude"));
  if (latitude && longitude && g_variant_is_of_type(latitude.get(), G_VARIANT_TYPE_DOUBLE) &&
      g_variant_is_of_type(longitude.get(), G_VARIANT_TYPE_DOUBLE)) {
    std::lock_guard lock(shared.mutex);
    shared.last = Coordinate{g_variant_get_double(latitude.get()), g_variant_get_double(longitude.get())};
  }
}

// Connected while the state lives (the source disconnects it first).
void locationUpdated(GClueClient*, const gchar*, const gchar* path, gpointer data) {
  auto& shared = *static_cast<Shared*>(data);
  gclue_location_proxy_new(shared.connection.get(), G_DBUS_PROXY_FLAGS_NONE, kService, path,
                           shared.cancellable.get(), resume, pending(shared, locationLoaded));
}

void clientStarted(Shared& shared, GAsyncResult* result) {
  GErrorPtr error;
  gclue_client_call_start_finish(shared.client.get(), result, outParam(error));
  if (succeeded(shared, "starting the client", error)) shared.setState(GeocluePosition::State::Running);
}

/// Sets one property of the client; calls on the connection are delivered
/// in order, so both land before Start.
void setClientProperty(Shared& shared, const char* name, GVariant* value) {
  g_dbus_proxy_call(G_DBUS_PROXY(shared.client.get()), "org.freedesktop.DBus.Properties.Set",
                    g_variant_new("(ssv)", kClientInterface, name, value), G_DBUS_CALL_FLAGS_NONE, -1,
                    shared.cancellable.get(), nullptr, nullptr);
}

void clientMade(Shared& shared, GAsyncResult* result) {
  GErrorPtr error;
  shared.client.reset(gclue_client_proxy_new_finish(result, outParam(error)));
  if (!succeeded(shared, "opening the client", error)) return;
  setClientProperty(shared, "DesktopId", g_variant_new_string(shared.options.desktopId.c_str()));
  setClientProperty(shared, "RequestedAccuracyLevel", g_variant_new_uint32(GCLUE_ACCURACY_LEVEL_EXACT));
  shared.updatedHandler =
      g_signal_connect(shared.client.get(), "location-updated", G_CALLBACK(locationUpdated), &shared);
  gclue_client_call_start(shared.client.get(), shared.cancellable.get(), resume, pending(shared, clientStarted));
}

void clientGiven(Shared& shared, GAsyncResult* result) {
  GErrorPtr error;
  GCharPtr path;
  gclue_manager_call_get_client_finish(shared.manager.get(), outParam(path), result, outParam(error));
  if (!succeeded(shared, "asking for a client", error)) return;
  gclue_client_proxy_new(shared.connection.get(), G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES, kService, path.get(),
                         shared.cancellable.get(), resume, pending(shared, clientMade));
}

void managerMade(Shared& shared, GAsyncResult* result) {
  GErrorPtr error;
  shared.manager.reset(gclue_manager_proxy_new_finish(result, outParam(error)));
  if (!succeeded(shared, "reaching the manager", error)) return;
  gclue_manager_call_get_client(shared.manager.get(), shared.cancellable.get(), resume, pending(shared, clientGiven));
}

void connected(Shared& shared, GAsyncResult* result) {
  GErrorPtr error;
  shared.connection.reset(g_dbus_connection_new_for_address_finish(result, outParam(error)));
  if (!succeeded(shared, "connecting to the system bus", error)) return;
  gclue_manager_proxy_new(shared.connection.get(), G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES, kService, kManagerPath,
                          shared.cancellable.get(), resume, pending(shared, managerMade));
}

}  // namespace

GeocluePosition::GeocluePosition(GeocluePositionOptions options) : shared_(std::make_shared<Shared>()) {
  shared_->options = std::move(options);
  shared_->self = shared_;
  std::string address = shared_->options.busAddress;
  if (address.empty()) {
    GErrorPtr error;
    GCharPtr system(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, outParam(error)));
    if (!system) {
      shared_->fail("finding the system bus", error.get());
      return;
    }
    address = system.get();
  }
  // A connection of its own: the shared system-bus connection would end the
  // process when the bus goes away.
  g_dbus_connection_new_for_address(address.c_str(),
                                    static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                                      G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                                    nullptr, shared_->cancellable.get(), resume, pending(*shared_, connected));
}

GeocluePosition::~GeocluePosition() {
  g_cancellable_cancel(shared_->cancellable.get());
  if (shared_->client) {
    g_signal_handler_disconnect(shared_->client.get(), shared_->updatedHandler);
    if (state() == State::Running) {
      g_dbus_proxy_call(G_DBUS_PROXY(shared_->client.get()), "Stop", nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                        nullptr, nullptr);
    }
  }
}

std::optional<Coordinate> GeocluePosition::lastKnown() const {
  std::lock_guard lock(shared_->mutex);
  return shared_->last;
}

GeocluePosition::State GeocluePosition::state() const {
  std::lock_guard lock(shared_->mutex);
  return shared_->state;
}

}  // namespace vantu::linux_platform
