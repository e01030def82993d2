#pragma once
// The pieces every container dialog is made of (gtk_dialogs.cpp,
// gtk_pickers.cpp, gtk_consent.cpp, gtk_password_prompt.cpp): a modal window over the container's window, buttons
// running a function, and the record of which dialog shows which
// presented view controller.

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vantu/platform/view_controller.h"

namespace vantu::gtk {

/// The key window's GTK window, or nullptr.
GtkWindow* parentWindow();
/// A button that runs `onClick` when clicked.
GtkWidget* button(const std::string& title, std::function<void()> onClick);
/// A window over the key window, `width` pixels wide unless its content
/// needs more.
GtkWindow* newWindowOverParent(const std::string& title, int width, bool modal);
/// The dialogs' margin of 18 pixels on every side of `widget`.
void setDialogMargins(GtkWidget* widget);
/// A modal window over the key window, with a vertical content box and a
/// right-aligned button row (not yet added to the content).
GtkWindow* newDialogWindow(const std::string& title, GtkWidget*& content, GtkWidget*& buttonRow);
/// Runs `onClose` when the window manager closes `window` (the window
/// stays; the dialog is destroyed when its view controller is dismissed).
void onCloseRequest(GtkWindow* window, std::function<void()> onClose);
/// Records `window` as the dialog showing `presented`; `attached` is kept
/// until the dialog closes.
void recordDialog(const ViewController& presented, GtkWindow* window, std::vector<GtkWidget*> buttons,
                  std::shared_ptr<void> attached = nullptr);

}  // namespace vantu::gtk
