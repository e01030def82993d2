#include "platforms/linux/geoclue_position.h"

#include <geoclue.h>

#include <mutex>

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
  GCancellable* cancellable = g_cancellable_new();
  GDBusConnection* connection = nullptr;
  GClueManager* manager = nullptr;
  GClueClient* client = nullptr;
  gulong updatedHandler = 0;

  mutable std::mutex mutex;
  std::optional<Coordinate> last;
  State state = State::Starting;

  ~Shared() {
    for (gpointer object : {static_cast<gpointer>(client), static_cast<gpointer>(manager),
                            static_cast<gpointer>(connection), static_cast<gpointer>(cancellable)}) {
      if (object) g_object_unref(object);
    }
  }

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
bool succeeded(Shared& shared, const char* step, GError* error) {
  if (!error) return !g_cancellable_is_cancelled(shared.cancellable);
  if (!g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) shared.fail(step, error);
  g_error_free(error);
  return false;
}

void locationLoaded(Shared& shared, GAsyncResult* result) {
  GError* error = nullptr;
  GClueLocation* location = gclue_location_proxy_new_finish(result, &error);
  if (!succeeded(shared, "reading the location", error)) {
    if (location) g_object_unref(location);
    return;
  }
  GVariant* latitude = g_dbus_proxy_get_cached_property(G_DBUS_PROXY(location), "Latitude");
  GVariant* longitude = g_dbus_proxy_get_cached_property(G_DBUS_PROXY(location), "Longitude");
  if (latitude && longitude && g_variant_is_of_type(latitude, G_VARIANT_TYPE_DOUBLE) &&
      g_variant_is_of_type(longitude, G_VARIANT_TYPE_DOUBLE)) {
    std::lock_guard lock(shared.mutex);
    shared.last = Coordinate{g_variant_get_double(latitude), g_variant_get_double(longitude)};
  }
  if (latitude) g_variant_unref(latitude);
  if (longitude) g_variant_unref(longitude);
  g_object_unref(location);
}

// Connected while the state lives (the source disconnects it first).
void locationUpdated(GClueClient*, const gchar*, const gchar* path, gpointer data) {
  auto& shared = *static_cast<Shared*>(data);
  gclue_location_proxy_new(shared.connection, G_DBUS_PROXY_FLAGS_NONE, kService, path, shared.cancellable, resume,
                           pending(shared, locationLoaded));
}

void clientStarted(Shared& shared, GAsyncResult* result) {
  GError* error = nullptr;
  gclue_client_call_start_finish(shared.client, result, &error);
  if (succeeded(shared, "starting the client", error)) shared.setState(GeocluePosition::State::Running);
}

/// Sets one property of the client; calls on the connection are delivered
/// in order, so both land before Start.
void setClientProperty(Shared& shared, const char* name, GVariant* value) {
  g_dbus_proxy_call(G_DBUS_PROXY(shared.client), "org.freedesktop.DBus.Properties.Set",
                    g_variant_new("(ssv)", kClientInterface, name, value), G_DBUS_CALL_FLAGS_NONE, -1,
                    shared.cancellable, nullptr, nullptr);
}

void clientMade(Shared& shared, GAsyncResult* result) {
  GError* error = nullptr;
  shared.client = gclue_client_proxy_new_finish(result, &error);
  if (!succeeded(shared, "opening the client", error)) return;
  setClientProperty(shared, "DesktopId", g_variant_new_string(shared.options.desktopId.c_str()));
  setClientProperty(shared, "RequestedAccuracyLevel", g_variant_new_uint32(GCLUE_ACCURACY_LEVEL_EXACT));
  shared.updatedHandler = g_signal_connect(shared.client, "location-updated", G_CALLBACK(locationUpdated), &shared);
  gclue_client_call_start(shared.client, shared.cancellable, resume, pending(shared, clientStarted));
}

void clientGiven(Shared& shared, GAsyncResult* result) {
  GError* error = nullptr;
  gchar* path = nullptr;
  gclue_manager_call_get_client_finish(shared.manager, &path, result, &error);
  if (succeeded(shared, "asking for a client", error)) {
    gclue_client_proxy_new(shared.connection, G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES, kService, path,
                           shared.cancellable, resume, pending(shared, clientMade));
  }
  g_free(path);
}

void managerMade(Shared& shared, GAsyncResult* result) {
  GError* error = nullptr;
  shared.manager = gclue_manager_proxy_new_finish(result, &error);
  if (!succeeded(shared, "reaching the manager", error)) return;
  gclue_manager_call_get_client(shared.manager, shared.cancellable, resume, pending(shared, clientGiven));
}

void connected(Shared& shared, GAsyncResult* result) {
  GError* error = nullptr;
  shared.connection = g_dbus_connection_new_for_address_finish(result, &error);
  if (!succeeded(shared, "connecting to the system bus", error)) return;
  gclue_manager_proxy_new(shared.connection, G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES, kService, kManagerPath,
                          shared.cancellable, resume, pending(shared, managerMade));
}

}  // namespace

GeocluePosition::GeocluePosition(GeocluePositionOptions options) : shared_(std::make_shared<Shared>()) {
  shared_->options = std::move(options);
  shared_->self = shared_;
  std::string address = shared_->options.busAddress;
  if (address.empty()) {
    GError* error = nullptr;
    gchar* system = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, &error);
    if (!system) {
      shared_->fail("finding the system bus", error);
      g_clear_error(&error);
      return;
    }
    address = system;
    g_free(system);
  }
  // A connection of its own: the shared system-bus connection would end the
  // process when the bus goes away.
  g_dbus_connection_new_for_address(address.c_str(),
                                    static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                                      G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                                    nullptr, shared_->cancellable, resume, pending(*shared_, connected));
}

GeocluePosition::~GeocluePosition() {
  g_cancellable_cancel(shared_->cancellable);
  if (shared_->client) {
    g_signal_handler_disconnect(shared_->client, shared_->updatedHandler);
    if (state() == State::Running) {
      g_dbus_proxy_call(G_DBUS_PROXY(shared_->client), "Stop", nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr,
                        nullptr);
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
