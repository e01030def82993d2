#include "vantu/runtime/network_events.h"

#include "vantu/bridges/host/device_info_data_store.h"
#include "vantu/net/h5_reachability.h"
#include "vantu/platform/platform.h"

namespace vantu::page {

NetworkEvents::NetworkEvents(std::function<void(const Value& detail)> changed) : changed_(std::move(changed)) {
  auto made = H5Reachability::makeForInternet();
  if (!made.ok()) return;
  monitor_ = made.value();
  lastType_ = DeviceInfoDataStore::createDeviceNetworkType();
  // The monitor calls on the main queue only while it exists, and this
  // object owns it.
  auto listener = [this](H5Reachability&) { check(); };
  monitor_->whenReachable = listener;
  monitor_->whenUnreachable = listener;
  // A notifier that cannot start gives no events; the bridge still answers.
  (void)monitor_->startNotifier();
}

NetworkEvents::~NetworkEvents() = default;

void NetworkEvents::check() {
  // The platform may be taken down while a change is on its way.
  if (!hasPlatform()) return;
  auto type = DeviceInfoDataStore::createDeviceNetworkType();
  if (type == lastType_) return;
  lastType_ = type;
  // The last listener may stop listening while it hears this, destroying
  // this object: nothing of it is touched after the call.
  auto changed = changed_;
  changed(Dict{{"type", std::move(type)}});
}

}  // namespace vantu::page
