#include "platforms/common/basic_notification_center.h"

namespace vantu {

std::size_t BasicNotificationCenter::observerCount() const {
  std::lock_guard lock(mutex_);
  return observers_.size();
}

void BasicNotificationCenter::doAddObserver(std::uint64_t id, std::string name, Observer observer) {
  auto entry = std::make_shared<Entry>();
  entry->id = id;
  entry->name = std::move(name);
  entry->observer = std::move(observer);
  std::lock_guard lock(mutex_);
  observers_.push_back(std::move(entry));
}

void BasicNotificationCenter::doRemoveObserver(std::uint64_t id) {
  std::shared_ptr<Entry> removed;  // its observer is destroyed outside the lock
  std::lock_guard lock(mutex_);
  std::erase_if(observers_, [&](const auto& entry) {
    if (entry->id != id) return false;
    entry->removed = true;
    removed = entry;
    return true;
  });
}

void BasicNotificationCenter::doPost(const Notification& notification) {
  std::vector<std::shared_ptr<Entry>> matching;
  {
    std::lock_guard lock(mutex_);
    for (const auto& entry : observers_) {
      if (entry->name == notification.name) matching.push_back(entry);
    }
  }
  for (const auto& entry : matching) {
    if (!entry->removed) entry->observer(notification);
  }
}

}  // namespace vantu
