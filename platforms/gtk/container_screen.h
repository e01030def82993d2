#pragma once
// A container screen: a view controller whose root view holds the
// container's web view as its first subview (where the library looks for
// it). Alerts and share sheets presented on it show as GTK dialogs.

#include <memory>
#include <string>

#include "platforms/gtk/container_web_view.h"
#include "vantu/platform/view_controller.h"

namespace vantu::gtk {

class ContainerScreen : public ViewController {
 public:
  /// A screen for `webView`, its view loaded and its bridge calls coming
  /// from it.
  static std::shared_ptr<ContainerScreen> make(std::shared_ptr<ContainerWebView> webView);
  explicit ContainerScreen(std::shared_ptr<ContainerWebView> webView) : webView_(std::move(webView)) {}

  const std::shared_ptr<ContainerWebView>& webView() const { return webView_; }
  GtkWidget* widget() const { return webView_->widget(); }

 protected:
  std::shared_ptr<View> loadView() override;
  void didPresent(const std::shared_ptr<ViewController>& presented, bool animated) override;
  void didDismiss(const std::shared_ptr<ViewController>& presented, bool animated) override;

 private:
  std::shared_ptr<ContainerWebView> webView_;
};

}  // namespace vantu::gtk
