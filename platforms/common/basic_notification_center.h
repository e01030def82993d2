#pragma once
// The notification centre of every platform, usable from several threads: observers
// are added, removed and notified under a lock, but called outside it, on
// the posting thread, in the order they were added. An observer may add or
// remove observers (itself included) while it is being called.
//
// Removal takes effect for every delivery that reaches the observer after
// the removal; a call already under way on another thread at that moment
// may still be finishing.

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "vantu/platform/notification_center.h"

namespace vantu {

class BasicNotificationCenter : public NotificationCenter {
 public:
  std::size_t observerCount() const;

 protected:
  void doAddObserver(std::uint64_t id, std::string name, Observer observer) override;
  void doRemoveObserver(std::uint64_t id) override;
  void doPost(const Notification& notification) override;

 private:
  struct Entry {
    std::uint64_t id;
    std::string name;
    Observer observer;
    std::atomic<bool> removed{false};
  };
  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<Entry>> observers_;
};

}  // namespace vantu
