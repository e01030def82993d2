#include "platforms/sim/sim_notification_center.h"

#include <algorithm>

namespace vantu::sim {

void SimNotificationCenter::insertObserver(std::uint64_t id, std::string name, Observer observer) {
  observers_.push_back(std::make_shared<Entry>(Entry{id, std::move(name), std::move(observer)}));
}

void SimNotificationCenter::removeObserver(std::uint64_t id) {
  std::erase_if(observers_, [id](const auto& entry) {
    if (entry->id != id) return false;
    entry->removed = true;  // a delivery under way skips it from now on
    return true;
  });
}

void SimNotificationCenter::deliver(const Notification& notification) {
  posted_.push_back(Posted{notification.name, notification.object});
  // Observers may add or remove observers while being called.
  auto observers = observers_;
  for (const auto& entry : observers) {
    if (!entry->removed && entry->name == notification.name) entry->observer(notification);
  }
}

}  // namespace vantu::sim
