#pragma once
// A container stack: one window (or a widget in a host's window), its
// navigation stack and the screens on it. It is also the view-controller
// provider of the push-window bridges: a pushed page opens as a new screen
// on the same stack.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platforms/gtk/container_screen.h"
#include "platforms/gtk/container_window.h"
#include "vantu/core/app_type.h"
#include "vantu/core/h5_view_controller_provider.h"
#include "vantu/core/vantu_h5_delegate.h"

namespace vantu::gtk {

struct ContainerOptions {
  /// The app the stack's screens belong to (their unique app id).
  std::string uniqueAppId;
  AppType appType = AppType::miniapp;
  WebViewConfig webView;
  int width = 414;
  int height = 800;
  /// The host's delegate, attached to every screen of the stack; none when
  /// null.
  std::shared_ptr<VantuH5Delegate> delegate;
  /// The app ids whose pages the push-window bridges may open on this stack
  /// besides its own; any when absent.
  std::optional<std::vector<std::string>> allowedAppIds;
  /// false: no window of its own; the host places `window()->content()`.
  bool ownWindow = true;
};

class ContainerStack : public H5ViewControllerProvider {
 public:
  /// Makes the window and makes it the application's key window; it is
  /// made the key window again whenever one of its pages calls a bridge, so
  /// that what a bridge does to the key window lands on the caller's. Needs
  /// GTK initialised and a platform installed.
  explicit ContainerStack(ContainerOptions options);
  ~ContainerStack() override;
  ContainerStack(const ContainerStack&) = delete;
  ContainerStack& operator=(const ContainerStack&) = delete;

  /// The host's own event for the pages of this container: `name` with a
  /// JSON `detail` goes to the page of every screen on the stack, bottom
  /// first (each page that passes the whitelist hears it). Main thread.
  void emit(std::string_view name, const Value& detail);

  /// Opens `url` as the bottom screen, applies the flags and shows the
  /// window (when it has one of its own).
  std::shared_ptr<ContainerScreen> open(const std::string& url, const Dict& containerFlags = {},
                                        const Dict& webViewFlags = {});
  /// Opens `url` as a new screen on top, as a page's push does.
  std::shared_ptr<ContainerScreen> push(const std::string& url);
  /// Takes the top screen off (the bottom one stays); false when only the
  /// bottom one is left.
  bool pop();
  /// Whether `viewController` is on this stack's navigation.
  bool owns(const ViewController& viewController) const;
  const ContainerOptions& options() const { return options_; }

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
