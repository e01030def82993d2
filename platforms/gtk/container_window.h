#pragma once
// A container window: what a container stack shows, either in a GTK window
// of its own or as a widget a host places in its own window. The status
// strip (the coloured band the library adds to the key window) is a band
// along the top, above the navigation bar.

#include <gtk/gtk.h>

#include <memory>

#include "platforms/gtk/container_navigation.h"
#include "vantu/platform/application.h"

namespace vantu::gtk {

class ContainerWindow : public Window {
 public:
  /// Height of the status strip; a desktop window has no status bar, so the
  /// strip stands in for it at this height.
  static constexpr int kStatusStripHeight = 24;

  /// With `ownWindow` false no GTK window is made: the host places
  /// `content()` in a window of its own.
  ContainerWindow(int width, int height, bool ownWindow = true);
  ~ContainerWindow() override;

  /// The window of its own, else the window `content()` was placed in (null
  /// until it is placed).
  GtkWindow* gtkWindow() const;
  /// The status strip above the navigation: what a host places.
  GtkWidget* content() const { return box_.get(); }
  /// Shows `navigation` as the window's content and root view controller.
  void setNavigationController(std::shared_ptr<ContainerNavigationController> navigation);
  /// Whether the status strip shows (tests).
  bool statusStripVisible() const { return gtk_widget_get_visible(strip_); }

 protected:
  void didChange(Change change) override;

 private:
  void mirrorStatusStrip();

  // References of our own: GTK owns toplevel windows, and a host's window
  // its children.
  linux_platform::GObjectPtr<GtkWindow> window_;
  linux_platform::GObjectPtr<GtkWidget> box_;
  GtkWidget* strip_;  // belongs to box_
  linux_platform::GObjectPtr<GtkCssProvider> css_;
};

}  // namespace vantu::gtk
