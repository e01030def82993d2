#include "platforms/sim/sim_notification_center.h"

namespace vantu::sim {

void SimNotificationCenter::deliver(const Notification& notification) {
  posted_.push_back(Posted{notification.name, notification.object});
  BasicNotificationCenter::deliver(notification);
}

}  // namespace vantu::sim
