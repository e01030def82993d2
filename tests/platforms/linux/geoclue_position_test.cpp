// The GeoClue position source against a private dbus-daemon started here,
// with a small GeoClue service made of libgeoclue's skeletons.

#ifdef VANTU_HAVE_GEOCLUE

#include "platforms/linux/geoclue_position.h"

#include <geoclue.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace vantu::linux_platform {
namespace {

/// A dbus-daemon of this test's own (GLib's test bus), ended with the test.
struct PrivateBus {
  PrivateBus() { g_test_dbus_up(bus); }
  ~PrivateBus() {
    g_test_dbus_down(bus);
    g_object_unref(bus);
  }
  std::string address() const { return g_test_dbus_get_bus_address(bus); }
  GTestDBus* bus = g_test_dbus_new(G_TEST_DBUS_NONE);
};

/// GeoClue's manager, one client and its location, on the private bus.
struct FakeGeoClue {
  FakeGeoClue(const std::string& address, bool refuse) : refuse_(refuse) {
    connection_ = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    EXPECT_NE(connection_, nullptr);
    export_(manager_, "/org/freedesktop/GeoClue2/Manager");
    export_(client_, kClientPath);
    auto getClient = +[](GClueManager* m, GDBusMethodInvocation* call) {
      return gclue_manager_complete_get_client(m, call, kClientPath), TRUE;
    };
    auto start = +[](GClueClient* c, GDBusMethodInvocation* call, gpointer self) {
      return static_cast<FakeGeoClue*>(self)->start(c, call), TRUE;
    };
    g_signal_connect(manager_, "handle-get-client", G_CALLBACK(getClient), nullptr);
    g_signal_connect(client_, "handle-start", G_CALLBACK(start), this);
    GVariant* owned = g_dbus_connection_call_sync(
        connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", "org.freedesktop.GeoClue2", 0u), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    EXPECT_NE(owned, nullptr);
    if (owned) g_variant_unref(owned);
  }
  ~FakeGeoClue() {
    for (gpointer skeleton : {gpointer(location_), gpointer(client_), gpointer(manager_)}) {
      auto* exported = G_DBUS_INTERFACE_SKELETON(skeleton);
      if (g_dbus_interface_skeleton_get_connection(exported)) g_dbus_interface_skeleton_unexport(exported);
      g_object_unref(skeleton);
    }
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_object_unref(connection_);
  }

  static constexpr const char* kClientPath = "/org/freedesktop/GeoClue2/Client/1";
  static constexpr const char* kLocationPath = "/org/freedesktop/GeoClue2/Client/1/Location/0";

  template <typename Skeleton>
  void export_(Skeleton* skeleton, const char* path) {
    EXPECT_TRUE(g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(skeleton), connection_, path, nullptr));
  }
  void start(GClueClient* client, GDBusMethodInvocation* call) {
    if (refuse_) {
      return g_dbus_method_invocation_return_dbus_error(call, "org.freedesktop.DBus.Error.AccessDenied",
                                                        "'vantu-h5' disallowed, no agent for UID 0");
    }
    gclue_location_set_latitude(location_, 12.9715987);
    gclue_location_set_longitude(location_, 77.5945627);
    export_(location_, kLocationPath);
    gclue_client_complete_start(client, call);
    gclue_client_emit_location_updated(client, "/", kLocationPath);
  }

  bool refuse_;
  GDBusConnection* connection_ = nullptr;
  GClueManager* manager_ = gclue_manager_skeleton_new();
  GClueClient* client_ = gclue_client_skeleton_new();
  GClueLocation* location_ = gclue_location_skeleton_new();
};

TEST(GeocluePosition, AFixBecomesTheLastKnownCoordinateAndWithoutBusServiceOrPermissionThereIsOneLine) {
  using State = GeocluePosition::State;
  enum Service { none, givesFix, refuses };
  PrivateBus bus;
  auto expire = [](gpointer flag) { return *static_cast<bool*>(flag) = true, gboolean(G_SOURCE_REMOVE); };
  // An empty address means the system bus (DBUS_SYSTEM_BUS_ADDRESS); no step: a fix arrives.
  const struct { const char* name; std::string address; Service service; const char* step; } rows[] = {
      {"a fix on the system bus", "", givesFix, nullptr},
      {"no bus", "unix:path=/nonexistent/vantu-bus", none, "connecting to the system bus"},
      {"no service", bus.address(), none, "asking for a client"},
      {"refused", bus.address(), refuses, "starting the client"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    std::optional<FakeGeoClue> service;
    if (row.service != none) service.emplace(bus.address(), row.service == refuses);
    std::vector<std::string> lines;
    GeocluePositionOptions options;
    options.busAddress = row.address;
    options.report = [&](std::string_view line) { lines.emplace_back(line); };
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
    GeocluePosition position(options);
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    EXPECT_EQ(position.lastKnown(), std::nullopt);
    // GLib's default main context runs until a fix or a failure, with a 20 s safety net.
    auto done = [&] { return position.lastKnown() || position.state() == State::Failed; };
    bool expired = false;
    guint timer = g_timeout_add_seconds(20, expire, &expired);
    while (!done() && !expired) g_main_context_iteration(nullptr, TRUE);
    if (!expired) g_source_remove(timer);
    ASSERT_TRUE(done());
    if (!row.step) {
      EXPECT_EQ(position.lastKnown(), (Coordinate{12.9715987, 77.5945627}));
      EXPECT_EQ(position.state(), State::Running);
      EXPECT_STREQ(gclue_client_get_desktop_id(service->client_), "vantu-h5");
      EXPECT_EQ(gclue_client_get_requested_accuracy_level(service->client_), guint(GCLUE_ACCURACY_LEVEL_EXACT));
      EXPECT_TRUE(lines.empty());
      continue;
    }
    EXPECT_EQ(position.lastKnown(), std::nullopt);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(row.step), std::string::npos) << lines[0];
  }
}

}  // namespace
}  // namespace vantu::linux_platform

#endif  // VANTU_HAVE_GEOCLUE
