#pragma once
// The notification centre of the simulated device: observers in the order
// they were added, delivery on the posting thread, and a record of every
// notification posted (for tests).

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "vantu/platform/notification_center.h"

namespace vantu::sim {

class SimNotificationCenter : public NotificationCenter {
 public:
  /// A notification as recorded: its name and (weakly) its object.
  struct Posted {
    std::string name;
    std::weak_ptr<Object> object;
  };
  /// Every notification posted since the last call.
  std::vector<Posted> takePosted() { return std::exchange(posted_, {}); }
  std::size_t observerCount() const { return observers_.size(); }

 protected:
  void insertObserver(std::uint64_t id, std::string name, Observer observer) override;
  void removeObserver(std::uint64_t id) override;
  void deliver(const Notification& notification) override;

 private:
  struct Entry {
    std::uint64_t id;
    std::string name;
    Observer observer;
    bool removed = false;
  };
  std::vector<std::shared_ptr<Entry>> observers_;
  std::vector<Posted> posted_;
};

}  // namespace vantu::sim
