#include "platforms/sim/sim_notification_center.h"

namespace vantu::sim {

void SimNotificationCenter::doPost(const Notification& notification) {
  posted_.push_back(Posted{notification.name, notification.object});
  BasicNotificationCenter::doPost(notification);
}

}  // namespace vantu::sim
