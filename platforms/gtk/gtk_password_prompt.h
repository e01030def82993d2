#pragma once
// The owner-authentication password prompt as a GTK dialog: modal over the
// container's window, with the page's reason, what PAM asks for, an entry
// and two buttons (the page's cancel title and "OK"). Enter or "OK" submits,
// the cancel button or closing the window cancels. After a wrong password
// the next prompt says so above the entry. The typed text is cleared from
// the entry as soon as it has been handed over.

#include <gtk/gtk.h>

#include <optional>

#include "platforms/linux/password_prompt.h"

namespace vantu::gtk {

class GtkPasswordPrompt : public linux_platform::PasswordPrompt {
 protected:
  void show(Request request, Answer answer) override;
};

/// The widgets of the password dialog on screen (one at a time), if any.
struct PasswordDialog {
  GtkWindow* window;
  GtkWidget* entry;
  GtkWidget* okButton;
  GtkWidget* cancelButton;
  /// The line above the entry: a wrong-password warning and PAM's notices.
  GtkWidget* warning;
};
std::optional<PasswordDialog> shownPasswordDialog();

}  // namespace vantu::gtk
