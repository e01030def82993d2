#pragma once

#include <string>
#include <vector>

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "showAlert" (no product prefix): shows a native alert with the page's
/// "title" (optional), "message" (required string) and buttons, and answers
/// {"data": {"success": true}} when any button is tapped, then dismisses
/// the alert, animated. "type" (required string) chooses the buttons:
/// "custom" takes the page's "buttons" (strings, in order); "normal" and
/// every other type show the single button "Ok".
class AlertHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "showAlert";
  static constexpr std::string_view kNoMessage = "AlertHandler: No message bound in data";
  static constexpr std::string_view kNoType = "AlertHandler: No alert type string could be bound from data!";
  static constexpr std::string_view kNoViewController = "AlertHandler: No view controller";
  /// The button of a "normal" alert, and the fallback of a "custom" one.
  static constexpr std::string_view kDefaultButton = "Ok";

  void handleWith(H5HandlerInputParams params) override;

  /// The button titles an alert of `type` shows for the page's `data`.
  /// A "custom" alert whose "buttons" is missing, not an array, holds
  /// anything but strings, or is empty shows "Ok" instead, so that every
  /// alert can be closed and answered.
  static std::vector<std::string> buttonTitles(std::string_view type, const Dict& data);
};

}  // namespace vantu
