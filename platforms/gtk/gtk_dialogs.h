#pragma once
// Alerts and share sheets as GTK dialogs, over the container's window.
//
// An alert shows its title, message and buttons in order; pressing a button
// taps that action (the library dismisses the alert). Closing the dialog
// from the window manager taps the cancel button when there is one. A share
// sheet offers what a desktop can do with its items: copy the text to the
// clipboard, save the image as a PNG in the pictures folder. Image and
// document pickers show file choosers or the camera's preview
// (gtk_pickers.h), unless a picker script answers them.

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <vector>

#include "vantu/platform/view_controller.h"

namespace vantu::gtk {

/// Shows `presented` when it is an alert, a share sheet or a picker.
void showDialog(const std::shared_ptr<ViewController>& presented);
/// Answers a presented picker in place of its dialog; returns whether it
/// took the picker (false: the dialog shows).
using PickerScript = std::function<bool(const std::shared_ptr<ViewController>&)>;
/// Installs `script` for every picker presented from now on (none: empty).
void setPickerScript(PickerScript script);
/// Closes the dialog showing `presented`, if any.
void closeDialog(const ViewController& presented);
/// The window of the dialog showing `presented` (a GtkFileChooserDialog for
/// the gallery and the document picker), or nullptr.
GtkWindow* dialogWindow(const ViewController& presented);
/// The buttons of the dialog showing `presented`, in order (empty if none).
std::vector<GtkWidget*> dialogButtons(const ViewController& presented);

}  // namespace vantu::gtk
