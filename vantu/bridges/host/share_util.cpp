#include "vantu/bridges/host/share_util.h"

#include <memory>
#include <vector>

#include "vantu/core/h5_op_error.h"
#include "vantu/platform/activity_view_controller.h"

namespace vantu {

void ShareUtil::share(std::optional<std::string> text, std::optional<Image> image, ViewController& viewController,
                      const H5Callback& callback) {
  std::vector<ActivityItem> items;
  if (text) items.emplace_back(std::move(*text));
  if (image) items.emplace_back(std::move(*image));
  if (items.empty()) {
    callback(payload::success(Dict{{"success", false}, {"error", kNothingToShare}}));
    return;
  }
  viewController.present(std::make_shared<ActivityViewController>(std::move(items)), true);
  callback(payload::successFlag());
}

}  // namespace vantu
