#include "platforms/gtk/container_stack.h"

#include <algorithm>

#include "vantu/container/startup_params.h"
#include "vantu/container/vantu_h5_container_customizer.h"
#include "vantu/container/vantu_h5_web_view_customizer.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/platform/platform.h"
#include "vantu/runtime/page_events.h"

namespace vantu::gtk {
namespace {

void makeKey(const std::shared_ptr<ContainerWindow>& window) {
  auto& application = *platform().application;
  if (application.keyWindow() == window) return;
  application.setKeyWindow(window);
  application.setMainScreenBounds(window->frame());
  application.setStatusBarFrame(Rect{0, 0, window->frame().width, ContainerWindow::kStatusStripHeight});
}

}  // namespace

ContainerStack::ContainerStack(ContainerOptions options)
    : options_(std::move(options)),
      window_(std::make_shared<ContainerWindow>(options_.width, options_.height, options_.ownWindow)),
      navigation_(std::make_shared<ContainerNavigationController>()) {
  window_->setNavigationController(navigation_);
  makeKey(window_);
  auto& observer = options_.webView.observer;
  observer.call = [window = std::weak_ptr<ContainerWindow>(window_), call = std::move(observer.call)](
                      const page::Message& message) {
    if (auto key = window.lock()) makeKey(key);
    if (call) call(message);
  };
  // Focus is the library's own window's; a host that places the container
  // in its window tells the page through emit().
  if (auto* gtkWindow = window_->gtkWindow()) {
    g_signal_connect(gtkWindow, "notify::is-active", G_CALLBACK(onActive), this);
  }
}

ContainerStack::~ContainerStack() {
  if (auto* gtkWindow = window_->gtkWindow()) g_signal_handlers_disconnect_by_data(gtkWindow, this);
}

void ContainerStack::emit(std::string_view name, const Value& detail) {
  // A copy: a page's answer never changes the stack synchronously, but a
  // host's own listener might.
  const auto screens = navigation_->viewControllers();
  for (const auto& controller : screens) {
    if (auto screen = std::dynamic_pointer_cast<ContainerScreen>(controller)) screen->webView()->emit(name, detail);
  }
}

void ContainerStack::onActive(GObject* window, GParamSpec*, gpointer self) {
  const bool focused = gtk_window_is_active(GTK_WINDOW(window));
  static_cast<ContainerStack*>(self)->emit(page::kWindowFocusEvent, Dict{{"focused", focused}});
}

std::shared_ptr<ContainerScreen> ContainerStack::open(const std::string& url, const Dict& containerFlags,
                                                      const Dict& webViewFlags) {
  auto screen = makeScreen(url, options_.uniqueAppId, webViewFlags);
  navigation_->pushViewController(screen, false);
  VantuH5ContainerCustomizer::customize(*screen, navigation_, containerFlags);
  if (options_.ownWindow) gtk_window_present(window_->gtkWindow());
  return screen;
}

std::shared_ptr<ContainerScreen> ContainerStack::push(const std::string& url) {
  auto screen = makeScreen(url, options_.uniqueAppId, {});
  VantuH5ContainerCustomizer::customize(*screen, navigation_, {});
  navigation_->pushViewController(screen, true);
  return screen;
}

bool ContainerStack::pop() {
  if (navigation_->viewControllers().size() < 2) return false;
  navigation_->pop();
  return true;
}

bool ContainerStack::owns(const ViewController& viewController) const {
  return viewController.navigationController() == navigation_;
}

std::shared_ptr<ContainerScreen> ContainerStack::topScreen() const {
  const auto& stack = navigation_->viewControllers();
  return stack.empty() ? nullptr : std::dynamic_pointer_cast<ContainerScreen>(stack.back());
}

std::shared_ptr<ViewController> ContainerStack::viewControllerWith(std::shared_ptr<ViewController>, Dict params,
                                                                   Dict customizationParams, Dict webViewFlags,
                                                                   std::string uniqueAppId) {
  auto url = params.getString(StartupParams::url);
  if (!url) return nullptr;
  if (options_.allowedAppIds && uniqueAppId != options_.uniqueAppId &&
      std::find(options_.allowedAppIds->begin(), options_.allowedAppIds->end(), uniqueAppId) ==
          options_.allowedAppIds->end()) {
    return nullptr;  // the push-window bridge answers that nothing could be opened
  }
  auto screen = makeScreen(*url, uniqueAppId, webViewFlags);
  VantuH5ContainerCustomizer::customize(*screen, navigation_, customizationParams);
  return screen;
}

std::shared_ptr<ContainerScreen> ContainerStack::makeScreen(const std::string& url, const std::string& uniqueAppId,
                                                            const Dict& webViewFlags) {
  auto screen = ContainerScreen::make(ContainerWebView::make(options_.webView));
  setUniqueAppIdentifier(*screen, uniqueAppId);
  if (options_.delegate) setVH5ViewControllerDelegate(*screen, options_.delegate);
  setIsH5(*screen, true);
  setAppType(*screen, options_.appType);
  VantuH5WebViewCustomizer::customize(screen->webView(), webViewFlags);
  screen->webView()->load(url);
  return screen;
}

}  // namespace vantu::gtk
