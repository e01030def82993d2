#pragma once
// The navigation stack of a container window: a header bar (the navigation
// bar) above a GtkStack of screens. A back button pops the top screen.

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "platforms/linux/gobject_ptr.h"
#include "vantu/platform/view_controller.h"

namespace vantu::gtk {

/// The header bar behind the navigation-bar model: hidden flag, tint (the
/// colour of its title and buttons) and background colour are mirrored.
class ContainerNavigationBar : public NavigationBar {
 public:
  ContainerNavigationBar();
  ~ContainerNavigationBar() override;
  GtkWidget* widget() const { return headerBar_.get(); }
  void setTitle(const std::string& title);

 protected:
  void didChange(Change change) override;

 private:
  linux_platform::GObjectPtr<GtkWidget> headerBar_;
  GtkWidget* title_;  // belongs to the header bar
  linux_platform::GObjectPtr<GtkCssProvider> css_;
  std::string cssClass_;
};

class ContainerNavigationController : public NavigationController {
 public:
  ContainerNavigationController();
  ~ContainerNavigationController() override;

  GtkWidget* widget() const { return box_.get(); }
  std::shared_ptr<ContainerNavigationBar> bar() const;
  /// Takes the top screen off the stack (the back button); the bottom one
  /// stays.
  void pop();

 protected:
  void didPush(const std::shared_ptr<ViewController>& pushed, bool animated) override;
  void didPresent(const std::shared_ptr<ViewController>& presented, bool animated) override;
  void didDismiss(const std::shared_ptr<ViewController>& presented, bool animated) override;

 private:
  void showTop();

  linux_platform::GObjectPtr<GtkWidget> box_;  // stack_ and back_ belong to it
  GtkWidget* stack_;
  GtkWidget* back_;
};

}  // namespace vantu::gtk
