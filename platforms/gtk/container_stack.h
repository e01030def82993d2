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

  ContainerOptions options_;
  std::shared_ptr<ContainerWindow> window_;
  std::shared_ptr<ContainerNavigationController> navigation_;
};

}  // namespace vantu::gtk
