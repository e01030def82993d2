#include "platforms/camera/camera_directory.h"

#include <algorithm>
#include <mutex>

namespace vantu::camera {
namespace {

// The location a device declares: a string property named "location" or
// ending in ".location" ("api.libcamera.location", "camera.location").
std::string declaredLocation(GstDevice* device) {
  GstStructure* properties = gst_device_get_properties(device);
  std::string location;
  if (properties) {
    gst_structure_foreach(
        properties,
        [](GQuark field, const GValue* value, gpointer out) -> gboolean {
          const std::string_view name = g_quark_to_string(field);
          const bool named = name == "location" || (name.size() > 9 && name.ends_with(".location"));
          if (named && G_VALUE_HOLDS_STRING(value)) *static_cast<std::string*>(out) = g_value_get_string(value);
          return TRUE;
        },
        &location);
    gst_structure_free(properties);
  }
  return location;
}

}  // namespace

struct CameraDirectory::State {
  mutable std::mutex mutex;
  std::vector<GstDevice*> devices;  // one reference each
  bool listed = false;
  std::string deviceClass;
  GstDeviceMonitor* monitor = nullptr;  // worker queue only

  void startMonitor();

  ~State() {
    for (GstDevice* device : devices) gst_object_unref(device);
  }

  void add(GstDevice* device) {
    std::lock_guard lock(mutex);
    if (std::find(devices.begin(), devices.end(), device) != devices.end()) return;
    devices.push_back(GST_DEVICE(gst_object_ref(device)));
  }
  // The devices as the choice rule sees them; the caller holds the mutex.
  std::vector<CameraInfo> infos() const {
    std::vector<CameraInfo> out;
    for (GstDevice* device : devices) {
      gchar* name = gst_device_get_display_name(device);
      out.push_back({name ? name : "", declaredLocation(device)});
      g_free(name);
    }
    return out;
  }
  void remove(GstDevice* device) {
    std::lock_guard lock(mutex);
    auto it = std::find(devices.begin(), devices.end(), device);
    if (it == devices.end()) return;
    gst_object_unref(*it);
    devices.erase(it);
  }
};

CameraDirectory::CameraDirectory(std::shared_ptr<Dispatch> dispatch, std::string deviceClass)
    : dispatch_(std::move(dispatch)),
      worker_(dispatch_->makeSerialQueue("com.vantu.camera.DeviceMonitor")),
      state_(std::make_shared<State>()) {
  state_->deviceClass = std::move(deviceClass);
}

CameraDirectory::~CameraDirectory() {
  // The state lives until the monitor has stopped, as its bus handler uses it.
  // The task holds the queue, so the main thread never waits for the worker.
  worker_->async([state = state_, worker = worker_] {
    if (!state->monitor) return;
    gst_device_monitor_stop(state->monitor);
    GstBus* bus = gst_device_monitor_get_bus(state->monitor);
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
    gst_object_unref(state->monitor);
    state->monitor = nullptr;
  });
}

// On the worker queue: GStreamer's first initialisation reads its plugin
// registry, which may take a while.
void CameraDirectory::State::startMonitor() {
  if (!gst_is_initialized()) gst_init(nullptr, nullptr);
  monitor = gst_device_monitor_new();
  gst_device_monitor_add_filter(monitor, deviceClass.c_str(), nullptr);
  // Hot-plugged cameras: the monitor's messages are handled on the thread
  // that posts them, so no main context needs to run for them.
  GstBus* bus = gst_device_monitor_get_bus(monitor);
  gst_bus_set_sync_handler(
      bus,
      [](GstBus*, GstMessage* message, gpointer data) -> GstBusSyncReply {
        auto* state = static_cast<State*>(data);
        GstDevice* device = nullptr;
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_DEVICE_ADDED) {
          gst_message_parse_device_added(message, &device);
          state->add(device);
        } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_DEVICE_REMOVED) {
          gst_message_parse_device_removed(message, &device);
          state->remove(device);
        }
        if (device) gst_object_unref(device);
        return GST_BUS_DROP;
      },
      this, nullptr);
  gst_object_unref(bus);
  gst_device_monitor_start(monitor);
  GList* listed = gst_device_monitor_get_devices(monitor);
  for (GList* item = listed; item; item = item->next) add(GST_DEVICE(item->data));
  g_list_free_full(listed, gst_object_unref);
}

void CameraDirectory::start(std::function<void()> listed) {
  worker_->async([state = state_, main = dispatch_->main(), listed = std::move(listed)] {
    if (!state->monitor) state->startMonitor();
    // The listing counts as in once the main queue knows.
    main->async([state, listed] {
      {
        std::lock_guard lock(state->mutex);
        state->listed = true;
      }
      if (listed) listed();
    });
  });
}

bool CameraDirectory::isListed() const {
  std::lock_guard lock(state_->mutex);
  return state_->listed;
}

std::vector<CameraInfo> CameraDirectory::cameras() const {
  std::lock_guard lock(state_->mutex);
  return state_->infos();
}

GstElement* CameraDirectory::createSource(Facing wanted) const {
  GstDevice* device = nullptr;
  {
    std::lock_guard lock(state_->mutex);
    if (auto index = chooseCamera(state_->infos(), wanted)) device = GST_DEVICE(gst_object_ref(state_->devices[*index]));
  }
  if (!device) return nullptr;
  GstElement* source = gst_device_create_element(device, nullptr);
  gst_object_unref(device);
  return source;
}

}  // namespace vantu::camera
