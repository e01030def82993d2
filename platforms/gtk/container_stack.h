#pragma once
// A container stack: one window, its navigation stack and the screens on
// it. It is also the view-controller provider of the push-window bridges:
// a pushed page opens as a new screen on the same stack.

#include <memory>
#include <string>

#include "platforms/gtk/container_screen.h"
#include "platforms/gtk/container_window.h"
#include "vantu/core/app_type.h"
#include "vantu/core/h5_view_controller_provider.h"

namespace vantu::gtk {

struct ContainerOptions {
  /// The app the stack's screens belong to (their unique app id).
  std::string uniqueAppId;
  AppType appType = AppType::miniapp;
  WebViewConfig webView;
  int width = 414;
  int height = 800;
};

class ContainerStack : public H5ViewControllerProvider {
 public:
  /// Makes the window and makes it the application's key window. Needs GTK
  /// initialised and a platform installed.
  explicit ContainerStack(ContainerOptions options);
  ~ContainerStack() override;
  ContainerStack(const ContainerStack&) = delete;
  ContainerStack& operator=(const ContainerStack&) = delete;

  /// The host's own event for the pages of this container: `name` with a
  /// JSON `detail` goes to the page of every screen on the stack, bottom
  /// first (each page that passes the whitelist hears it). Main thread.
  void emit(std::string_view name, const Value& detail);

  /// Opens `url` as the bottom screen, applies the flags and shows the window.
  std::shared_ptr<ContainerScreen> open(const std::string& url, const Dict& containerFlags = {},
                                        const Dict& webViewFlags = {});

  const std::shared_ptr<ContainerWindow>& window() const { return window_; }
  const std::shared_ptr<ContainerNavigationController>& navigation() const { return navigation_; }
  /// The screen on top of the stack.
  std::shared_ptr<ContainerScreen> topScreen() const;

  std::shared_ptr<ViewController> viewControllerWith(std::shared_ptr<ViewController> viewController, Dict params,
                                                     Dict customizationParams, Dict webViewFlags,
                                                     std::string uniqueAppId) override;

 private:
  std::shared_ptr<ContainerScreen> makeScreen(const std::string& url, const std::string& uniqueAppId,
                                              const Dict& webViewFlags);

  static void onActive(GObject*, GParamSpec*, gpointer self);

  ContainerOptions options_;
  std::shared_ptr<ContainerWindow> window_;
  std::shared_ptr<ContainerNavigationController> navigation_;
};

}  // namespace vantu::gtk
