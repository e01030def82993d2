#include "platforms/gtk/container_screen.h"

#include "platforms/gtk/gtk_dialogs.h"

namespace vantu::gtk {

std::shared_ptr<ContainerScreen> ContainerScreen::make(std::shared_ptr<ContainerWebView> webView) {
  auto screen = std::make_shared<ContainerScreen>(std::move(webView));
  screen->webView_->bridge().setScreen(screen);
  screen->view();
  return screen;
}

std::shared_ptr<View> ContainerScreen::loadView() {
  auto root = std::make_shared<View>();
  root->addSubview(webView_);
  return root;
}

void ContainerScreen::didPresent(const std::shared_ptr<ViewController>& presented, bool) { showDialog(presented); }

void ContainerScreen::didDismiss(const std::shared_ptr<ViewController>& presented, bool) { closeDialog(*presented); }

}  // namespace vantu::gtk
