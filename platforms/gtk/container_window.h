#pragma once
// A container window: one GTK window per container stack. The status strip
// (the coloured band the library adds to the key window) is a band along
// the top of the window, above the navigation bar.

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

  ContainerWindow(int width, int height);
  ~ContainerWindow() override;

  GtkWindow* gtkWindow() const { return window_.get(); }
  /// Shows `navigation` as the window's content and root view controller.
  void setNavigationController(std::shared_ptr<ContainerNavigationController> navigation);
  /// Whether the status strip shows (tests).
  bool statusStripVisible() const { return gtk_widget_get_visible(strip_); }

 protected:
  void didChange(Change change) override;

 private:
  void mirrorStatusStrip();

  // A reference of our own: GTK owns toplevel windows.
  linux_platform::GObjectPtr<GtkWindow> window_;
  GtkWidget* box_;  // box_ and strip_ belong to the window
  GtkWidget* strip_;
  linux_platform::GObjectPtr<GtkCssProvider> css_;
};

}  // namespace vantu::gtk
