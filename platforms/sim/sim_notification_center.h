#pragma once
// The notification centre of the simulated device: the platform's basic
// centre plus a record of every notification posted (for tests).

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platforms/common/basic_notification_center.h"

namespace vantu::sim {

class SimNotificationCenter : public BasicNotificationCenter {
 public:
  /// A notification as recorded: its name and (weakly) its object.
  struct Posted {
    std::string name;
    std::weak_ptr<Object> object;
  };
  /// Every notification posted since the last call.
  std::vector<Posted> takePosted() { return std::exchange(posted_, {}); }

 protected:
  void doPost(const Notification& notification) override;

 private:
  std::vector<Posted> posted_;
};

}  // namespace vantu::sim
