#pragma once
// The host's sign-in dialog: a user name, "Sign in" and "Cancel". One at a
// time; a second request while it is open waits for the same answer.

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host_app {

class LoginDialog {
 public:
  /// Called with the user name, or nothing when the user cancelled.
  using Done = std::function<void(std::optional<std::string>)>;

  /// Shows the dialog over `parent` (or joins the one showing).
  void ask(GtkWindow* parent, Done done);
  bool isOpen() const { return window_ != nullptr; }
  /// Types `user` and presses "Sign in", as a person would (the self-test).
  void signInAs(const std::string& user);

 private:
  void finish(std::optional<std::string> user);

  GtkWindow* window_ = nullptr;
  GtkWidget* entry_ = nullptr;
  GtkWidget* signIn_ = nullptr;
  std::vector<Done> waiting_;
};

}  // namespace host_app
