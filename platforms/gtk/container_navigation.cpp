#include "platforms/gtk/container_navigation.h"

#include <atomic>
#include <string>

#include "platforms/gtk/container_screen.h"
#include "platforms/gtk/gtk_css.h"
#include "platforms/gtk/gtk_dialogs.h"

namespace vantu::gtk {
ContainerNavigationBar::ContainerNavigationBar()
    : NavigationBar(Rect{0, 0, 0, 44}),
      headerBar_(GTK_WIDGET(g_object_ref_sink(gtk_header_bar_new()))),
      title_(gtk_label_new("")),
      css_(gtk_css_provider_new()) {
  gtk_header_bar_set_show_title_buttons(GTK_HEADER_BAR(headerBar_.get()), FALSE);
  gtk_header_bar_set_title_widget(GTK_HEADER_BAR(headerBar_.get()), title_);
  gtk_label_set_ellipsize(GTK_LABEL(title_), PANGO_ELLIPSIZE_END);
  // A class of its own, so each window's bar takes only its own colours.
  static std::atomic<int> bars{0};
  cssClass_ = "vantu-navigation-bar-" + std::to_string(++bars);
  gtk_widget_add_css_class(headerBar_.get(), cssClass_.c_str());
  gtk_style_context_add_provider_for_display(gdk_display_get_default(), GTK_STYLE_PROVIDER(css_.get()),
                                             GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

ContainerNavigationBar::~ContainerNavigationBar() {
  gtk_style_context_remove_provider_for_display(gdk_display_get_default(), GTK_STYLE_PROVIDER(css_.get()));
}

void ContainerNavigationBar::setTitle(const std::string& title) { gtk_label_set_text(GTK_LABEL(title_), title.c_str()); }

void ContainerNavigationBar::didChange(Change change) {
  switch (change) {
    case Change::Hidden:
      gtk_widget_set_visible(headerBar_.get(), !isHidden());
      break;
    case Change::TintColor:
    case Change::BackgroundColor: {
      std::string css = "." + cssClass_ + " {";
      if (tintColor()) css += " color: " + cssColor(*tintColor()) + ";";
      if (backgroundColor()) css += " background: " + cssColor(*backgroundColor()) + ";";
      css += " }";
      gtk_css_provider_load_from_data(css_.get(), css.c_str(), static_cast<gssize>(css.size()));
      break;
    }
    default:
      break;
  }
}

ContainerNavigationController::ContainerNavigationController()
    : box_(GTK_WIDGET(g_object_ref_sink(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)))),
      stack_(gtk_stack_new()),
      back_(gtk_button_new_from_icon_name("go-previous-symbolic")) {
  auto bar = std::make_shared<ContainerNavigationBar>();
  replaceNavigationBar(bar);
  gtk_stack_set_transition_type(GTK_STACK(stack_), GTK_STACK_TRANSITION_TYPE_SLIDE_LEFT_RIGHT);
  gtk_widget_set_vexpand(stack_, TRUE);
  gtk_header_bar_pack_start(GTK_HEADER_BAR(bar->widget()), back_);
  gtk_widget_set_visible(back_, FALSE);
  g_signal_connect_swapped(back_, "clicked", G_CALLBACK(+[](gpointer self) {
                             static_cast<ContainerNavigationController*>(self)->pop();
                           }),
                           this);
  gtk_box_append(GTK_BOX(box_.get()), bar->widget());
  gtk_box_append(GTK_BOX(box_.get()), stack_);
}

ContainerNavigationController::~ContainerNavigationController() {
  g_signal_handlers_disconnect_by_data(back_, this);
  for (const auto& child : children()) {
    if (auto screen = std::dynamic_pointer_cast<ContainerScreen>(child)) screen->webView()->setTitleListener({});
  }
}

std::shared_ptr<ContainerNavigationBar> ContainerNavigationController::bar() const {
  return std::static_pointer_cast<ContainerNavigationBar>(navigationBar());
}

void ContainerNavigationController::didPush(const std::shared_ptr<ViewController>& pushed, bool animated) {
  auto screen = std::dynamic_pointer_cast<ContainerScreen>(pushed);
  if (!screen) return;  // only container screens have widgets
  gtk_stack_set_transition_type(GTK_STACK(stack_), animated ? GTK_STACK_TRANSITION_TYPE_SLIDE_LEFT
                                                            : GTK_STACK_TRANSITION_TYPE_NONE);
  gtk_stack_add_child(GTK_STACK(stack_), screen->widget());
  std::weak_ptr<ContainerScreen> weak = screen;
  screen->webView()->setTitleListener([this, weak](const std::string&) {
    if (!viewControllers().empty() && viewControllers().back() == weak.lock()) showTop();
  });
  showTop();
}

void ContainerNavigationController::pop() {
  if (viewControllers().size() < 2) return;
  auto top = viewControllers().back();
  auto screen = std::dynamic_pointer_cast<ContainerScreen>(top);
  top->removeFromParent();
  gtk_stack_set_transition_type(GTK_STACK(stack_), GTK_STACK_TRANSITION_TYPE_SLIDE_RIGHT);
  showTop();
  if (screen) {
    screen->webView()->setTitleListener({});
    gtk_stack_remove(GTK_STACK(stack_), screen->widget());
  }
}

void ContainerNavigationController::showTop() {
  const auto& stack = viewControllers();
  gtk_widget_set_visible(back_, stack.size() > 1);
  auto screen = stack.empty() ? nullptr : std::dynamic_pointer_cast<ContainerScreen>(stack.back());
  if (!screen) return;
  gtk_stack_set_visible_child(GTK_STACK(stack_), screen->widget());
  bar()->setTitle(screen->webView()->title());
}

void ContainerNavigationController::didPresent(const std::shared_ptr<ViewController>& presented, bool) {
  showDialog(presented);
}

void ContainerNavigationController::didDismiss(const std::shared_ptr<ViewController>& presented, bool) {
  closeDialog(*presented);
}

}  // namespace vantu::gtk
