#pragma once
// A container: one mini-app's screens in a GTK widget the host places in
// its own window (or, for a quick start, in a window of the container's
// own). Pages get the JavaScript SDK and call bridges; each container has
// its own unique app id (its storage), web-domain whitelist, host delegate
// and bridge registry, so several mini-apps run side by side in one
// process without seeing each other's data or callers.
//
//   vantu::gtk::Container::Options options;
//   options.uniqueAppId = "com.example.shop";
//   options.allowedDomains = {"shop.example.com"};
//   options.delegate = myDelegate;
//   auto shop = vantu::gtk::Container::create(*host, std::move(options));
//   gtk_box_append(GTK_BOX(box), shop->widget());
//   shop->open("https://shop.example.com/");
//
// Threading: everything here, every delegate operation and every bridge
// handler runs on the main thread (GTK's). See docs/host-guide.md for the
// rules a delegate's answers follow.

#include <gtk/gtk.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/core/app_type.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/runtime/page_bridge.h"
#include "vantu/value/value.h"

namespace vantu::gtk {

class HostPlatform;

class Container {
 public:
  struct Options {
    /// The mini-app's unique app id: its storage and the id its screens
    /// report. Required; no two live containers may share one.
    std::string uniqueAppId;
    AppType appType = AppType::miniapp;
    /// Web domains whose pages may load and call bridges (a page's host
    /// must contain one of them). An empty list refuses every page.
    std::vector<std::string> allowedDomains;
    /// The app ids whose pages the push-window bridges may open in this
    /// container besides its own (none by default); any when absent.
    std::optional<std::vector<std::string>> allowedAppIds = std::vector<std::string>{};
    /// The host's delegate, attached to every screen; without one the
    /// host-delegated bridges answer that there is no delegate.
    std::shared_ptr<VantuH5Delegate> delegate;
    /// The bridges pages may call; every built-in bridge when null. A host
    /// adds its own with `registerAllBridges` and `add`.
    std::shared_ptr<BridgeRegistry> registry;
    /// Watches every call, answer and refused message.
    page::PageObserver observer;
    /// WebKit's inspector (right click, "Inspect Element").
    bool developerExtras = false;
    /// true: the container shows in a window of its own (`window()`);
    /// false: the host places `widget()`.
    bool ownWindow = false;
    /// The size of its own window, and the screen size pages are told.
    int width = 414;
    int height = 800;
  };

  /// Makes the container (no page yet). Throws std::invalid_argument for an
  /// empty or already used app id. Call on the main thread.
  static std::unique_ptr<Container> create(HostPlatform& platform, Options options);
  /// Drops the screens (answers still owed to their pages go nowhere) and,
  /// with a window of its own, closes it. A host removes `widget()` from its
  /// layout first.
  ~Container();
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

  const std::string& uniqueAppId() const;
  /// What the host places in its window.
  GtkWidget* widget() const;
  /// The container's own window, else the window `widget()` was placed in
  /// (null until it is placed).
  GtkWindow* window() const;

  /// Opens `url` as the bottom screen (and presents the window of its own).
  /// Call once; further pages go through `push`.
  void open(const std::string& url);
  /// Opens `url` as a new screen on top.
  void push(const std::string& url);
  /// Takes the top screen off; false when only the bottom one is left.
  bool pop();
  /// How many screens are on the stack.
  std::size_t depth() const;
  /// The screens' page URLs and titles, bottom first.
  std::vector<std::string> urls() const;
  std::vector<std::string> titles() const;

  /// Writes what the top screen shows as a PNG file, running the main
  /// context until it is written or `timeout` has passed; the error, if any.
  std::optional<std::string> saveSnapshot(const std::string& pngPath, std::chrono::milliseconds timeout);
  /// Opens WebKit's inspector for the top screen.
  void showInspector();

  /// Tells every page of this container that listens for `name`
  /// (`vantu.on(name, listener)`) about it, with `detail` as the listener's
  /// argument. Only top frames whose URL passes the whitelist hear it, in the
  /// order emitted; a page that replaced the listening one hears nothing.
  /// Main thread only.
  void emit(std::string_view name, const Value& detail);

 private:
  struct State;
  explicit Container(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace vantu::gtk
