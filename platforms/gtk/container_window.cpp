#include "platforms/gtk/container_window.h"

#include <string>

#include "platforms/gtk/gtk_css.h"
#include "vantu/container/vantu_h5_container_customizer.h"

namespace vantu::gtk {

ContainerWindow::ContainerWindow(int width, int height, bool ownWindow)
    : Window(Rect{0, 0, static_cast<double>(width), static_cast<double>(height)}),
      window_(ownWindow ? GTK_WINDOW(g_object_ref(gtk_window_new())) : nullptr),
      box_(GTK_WIDGET(g_object_ref_sink(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)))),
      strip_(gtk_drawing_area_new()),
      css_(gtk_css_provider_new()) {
  gtk_widget_set_size_request(strip_, -1, kStatusStripHeight);
  gtk_widget_set_visible(strip_, FALSE);
  gtk_style_context_add_provider(gtk_widget_get_style_context(strip_), GTK_STYLE_PROVIDER(css_.get()),
                                 GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  gtk_box_append(GTK_BOX(box_.get()), strip_);
  if (window_) {
    gtk_window_set_default_size(window_.get(), width, height);
    gtk_window_set_child(window_.get(), box_.get());
  } else {  // the host's layout gives the size
    gtk_widget_set_hexpand(box_.get(), TRUE);
    gtk_widget_set_vexpand(box_.get(), TRUE);
  }
}

ContainerWindow::~ContainerWindow() {
  if (window_) gtk_window_destroy(window_.get());
}

GtkWindow* ContainerWindow::gtkWindow() const {
  if (window_) return window_.get();
  GtkRoot* root = gtk_widget_get_root(box_.get());
  return root && GTK_IS_WINDOW(root) ? GTK_WINDOW(root) : nullptr;
}

void ContainerWindow::setNavigationController(std::shared_ptr<ContainerNavigationController> navigation) {
  gtk_box_append(GTK_BOX(box_.get()), navigation->widget());
  setRootViewController(std::move(navigation));
}

void ContainerWindow::didChange(Change change) {
  if (change == Change::Subviews) mirrorStatusStrip();
}

void ContainerWindow::mirrorStatusStrip() {
  auto strip = viewWithTag(VantuH5ContainerCustomizer::kStatusbarBackgroundViewTag);
  if (strip.get() == this) strip.reset();
  const auto color = strip ? strip->backgroundColor() : std::nullopt;
  gtk_widget_set_visible(strip_, strip != nullptr);
  if (!color) return;
  const std::string css = "drawingarea { background: " + cssColor(*color) + "; }";
  gtk_css_provider_load_from_data(css_.get(), css.c_str(), static_cast<gssize>(css.size()));
}

}  // namespace vantu::gtk
