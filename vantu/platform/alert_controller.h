#pragma once
// UI port: alerts (the reference platform's alert controller). An alert is
// a view controller with a title, a message, a preferred style and ordered
// actions (its buttons). The library builds one, adds its actions and
// presents it with `ViewController::present`; the platform shows it and,
// when the user taps a button, calls `tapAction` with the button's index,
// which runs that action's handler. Tapping does not dismiss the alert by
// itself: whoever handles the tap dismisses it (`dismiss(animated)`).

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "vantu/platform/view_controller.h"

namespace vantu {

class AlertAction {
 public:
  enum class Style { Default, Cancel, Destructive };
  /// Runs on the main thread when the user taps the action's button.
  using Handler = std::function<void(const AlertAction&)>;

  AlertAction(std::string title, Style style, Handler handler = {})
      : title_(std::move(title)), style_(style), handler_(std::move(handler)) {}

  const std::string& title() const { return title_; }
  Style style() const { return style_; }

 private:
  friend class AlertController;
  std::string title_;
  Style style_;
  Handler handler_;
};

class AlertController : public ViewController {
 public:
  enum class Style { Alert, ActionSheet };

  AlertController(std::string title, std::string message, Style preferredStyle)
      : title_(std::move(title)), message_(std::move(message)), preferredStyle_(preferredStyle) {}

  const std::string& title() const { return title_; }
  const std::string& message() const { return message_; }
  Style preferredStyle() const { return preferredStyle_; }

  /// Appends a button; buttons show in the order they were added.
  void addAction(AlertAction action) { actions_.push_back(std::move(action)); }
  const std::vector<AlertAction>& actions() const { return actions_; }

  /// The user tapped the button at `index` (in `actions()` order): runs its
  /// handler. Returns false, running nothing, when there is no such button
  /// or the alert is not being presented (only a shown alert can be
  /// tapped). The alert stays alive while the handler runs, even if the
  /// handler dismisses it.
  bool tapAction(std::size_t index);

 private:
  std::string title_;
  std::string message_;
  Style preferredStyle_;
  std::vector<AlertAction> actions_;
};

}  // namespace vantu
