#include "platforms/sim/keyboard_runner_command.h"

#include <memory>

#include "vantu/platform/keyboard_notifications.h"

namespace vantu::sim {

std::optional<std::string> keyboardCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  auto action = line.getString("keyboard");
  if (!action || (*action != "show" && *action != "hide")) return std::string("\"keyboard\" must be \"show\" or \"hide\"");
  std::shared_ptr<ScrollView> scrollView;
  Point offset;
  if (const Value* scrollTo = line.find("scrollTo"); scrollTo && !scrollTo->isNull()) {
    const Dict* scroll = scrollTo->asDict();
    if (!scroll) return std::string("\"scrollTo\" must be an object");
    for (const auto& [key, value] : *scroll) {
      if (key.text() != "view" && key.text() != "offset") return "\"scrollTo\": unknown field \"" + key.text() + "\"";
    }
    auto name = scroll->getString("view");
    if (!name) return std::string("\"scrollTo.view\" must be the name of a scroll view");
    scrollView = std::dynamic_pointer_cast<ScrollView>(runner.device().findView(*name));
    if (!scrollView) return "\"scrollTo.view\": no scroll view named \"" + *name + "\"";
    auto xy = scroll->getArray("offset");
    if (!xy || xy->size() != 2 || !(*xy)[0].isNumber() || !(*xy)[1].isNumber()) {
      return std::string("\"scrollTo.offset\" must be [x, y]");
    }
    offset = Point{*(*xy)[0].asNumber(), *(*xy)[1].asNumber()};
  }
  out.set("keyboard", *action);
  auto notification = *action == "show" ? kKeyboardWillShowNotification : kKeyboardWillHideNotification;
  SimDevice& device = runner.device();
  device.dispatch().main()->async([&device, scrollView, offset, notification] {
    device.notifications().post(notification);
    if (scrollView) scrollView->setContentOffset(offset, true);
  });
  out.set("settled", runner.settle());
  return std::nullopt;
}

}  // namespace vantu::sim
