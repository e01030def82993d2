#pragma once
// The container's picker dialogs.
//
// - The photo library (and saved-photos album) image picker is a file
//   chooser over the pictures folder, showing image files. The chosen file
//   is read and decoded on a worker queue, then the picker reports its URL
//   (under the image-URL and the older asset key) and the decoded picture
//   (left out when the file is no picture the library decodes).
// - The camera image picker is a preview window: the live video of the
//   camera the picker's rear/front choice maps onto (camera_choice.h), a
//   "Take photo" button (enabled once a frame is shown) and "Cancel". The
//   photo is the frame on screen when the button is pressed; it has no
//   file, so the picker reports the picture alone.
// - The document picker is a file chooser, with multiple selection when the
//   picker allows it and a filter made of the picker's document types that
//   name a kind of file (images, video, audio, text, PDF); a type standing
//   for any item shows every file. The chosen files' own URLs are
//   reported: a desktop hands over the originals, not copies.
// Cancelling, or closing a dialog from the window manager, cancels the
// picker. The dialogs close when the picker is dismissed.

#include <memory>

#include "vantu/platform/view_controller.h"

namespace vantu::gtk {

/// Shows the dialog for `presented` when it is an image or document picker.
void showPicker(const std::shared_ptr<ViewController>& presented);

}  // namespace vantu::gtk
