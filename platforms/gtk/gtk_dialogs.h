#pragma once
// Alerts and share sheets as GTK dialogs, over the container's window.
//
// An alert shows its title, message and buttons in order; pressing a button
// taps that action (the library dismisses the alert). Closing the dialog
// from the window manager taps the cancel button when there is one. A share
// sheet offers what a desktop can do with its items: copy the text to the
// clipboard, save the image as a PNG in the pictures folder. Image and
// document pickers have no dialog yet: they are cancelled at once, with a
// printed line saying so, so that their calls are answered.

#include <gtk/gtk.h>

#include <memory>
#include <vector>

#include "vantu/platform/view_controller.h"

namespace vantu::gtk {

/// Shows `presented` when it is an alert or a share sheet.
void showDialog(const std::shared_ptr<ViewController>& presented);
/// Closes the dialog showing `presented`, if any.
void closeDialog(const ViewController& presented);
/// The buttons of the dialog showing `presented`, in order (empty if none).
std::vector<GtkWidget*> dialogButtons(const ViewController& presented);

}  // namespace vantu::gtk
