#pragma once
// UI port: the share sheet (the reference platform's activity view
// controller). The library makes one with its activity items, in order,
// and presents it with `ViewController::present`; the platform offers the
// items to the system's share targets. The library adds no activities of
// its own (no application activities), and does not learn what the user
// did with the items.

#include <string>
#include <variant>
#include <vector>

#include "vantu/platform/images.h"
#include "vantu/platform/view_controller.h"

namespace vantu {

/// One thing to share: a text or an image.
using ActivityItem = std::variant<std::string, Image>;

class ActivityViewController : public ViewController {
 public:
  explicit ActivityViewController(std::vector<ActivityItem> activityItems)
      : activityItems_(std::move(activityItems)) {}

  const std::vector<ActivityItem>& activityItems() const { return activityItems_; }

 private:
  std::vector<ActivityItem> activityItems_;
};

}  // namespace vantu
