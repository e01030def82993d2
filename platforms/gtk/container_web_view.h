#pragma once
// The container's web view: a WebKitWebView behind the library's WebView
// model, with the page protocol wired in.
//
// Into the top frame only, at document start, it injects the JavaScript SDK
// (the page's main world) and a relay (an isolated script world) that
// forwards the SDK's "vantu:post" events to the "vantuBridge" message
// handler. The handler lives in the isolated world, so no frame's own
// scripts can reach it, and sub-frames get no relay: only the top frame can
// call bridges. On receipt the page's current URL must still pass the
// web-domain whitelist (the container's own, else the environment's).
// Main-frame loads of pages outside the whitelist are refused and replaced
// by an error page.
//
// Answers, progress and events reach the page in batches through
// `window.vantu.__receive`: a small batch inlined in a script, a large one
// as a string argument of a function call, so that it is never compiled as
// script source (docs/page-protocol.md says why and where the line is).
// The web view's page hears "containerShown" / "containerHidden" when its
// widget is mapped / unmapped (its screen comes on / leaves the window).

#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platforms/linux/gobject_ptr.h"
#include "vantu/platform/dispatch.h"
#include "vantu/platform/view.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/runtime/page_bridge.h"

namespace vantu::gtk {

/// What every web view of a container shares.
struct WebViewConfig {
  std::shared_ptr<BridgeRegistry> registry;
  page::PageObserver observer;
  /// WebKit's inspector (right click, "Inspect Element").
  bool developerExtras = false;
  /// The web domains whose pages may load and call bridges; the
  /// environment's list when null.
  std::shared_ptr<const H5WhiteListDomainData> allowedDomains;
};

class ContainerWebView : public WebView {
 public:
  static std::shared_ptr<ContainerWebView> make(const WebViewConfig& config);
  ~ContainerWebView() override;

  WebKitWebView* webKitView() const { return webView_.get(); }
  GtkWidget* widget() const { return GTK_WIDGET(webView_.get()); }
  page::PageBridge& bridge() { return bridge_; }

  /// Sends the host's event `name` with a JSON `detail` to the page (when it
  /// passes the whitelist; see PageBridge::emit).
  void emit(std::string_view name, const Value& detail) { bridge_.emit(name, detail); }

  /// Batches of at least this many bytes go to the page as a string
  /// argument rather than inlined in script source.
  static constexpr std::size_t kInlineBatchLimit = 64 * 1024;

  void load(const std::string& url);
  std::string uri() const;
  std::string title() const;

  /// Writes what the web view shows as a PNG file, running the main context
  /// until it is written or `timeout` has passed. Returns the error, if any.
  std::optional<std::string> saveSnapshot(const std::string& pngPath, Duration timeout);

  /// Called with the page's title whenever it changes.
  void setTitleListener(std::function<void(const std::string&)> listener) { titleListener_ = std::move(listener); }

  /// The error page shown for a refused navigation to `url`.
  static std::string refusedPageHtml(const std::string& url);

  explicit ContainerWebView(const WebViewConfig& config);

 protected:
  void didChange(Change change) override;

 private:
  static void onMessage(WebKitUserContentManager*, JSCValue* value, gpointer self);
  static gboolean onDecidePolicy(WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type,
                                 gpointer self);
  static void onLoadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self);
  static void onTitle(GObject*, GParamSpec*, gpointer self);
  static void onMap(GtkWidget*, gpointer self);
  static void onUnmap(GtkWidget*, gpointer self);
  void deliver(std::string batch);
  void refuse(const std::string& url);

  page::PageBridge bridge_;
  std::function<void(const std::string&)> titleListener_;
  std::string errorPageFor_;  // the refused URL whose error page is loading
  // Last, so they are let go first: the web view, then its content manager.
  linux_platform::GObjectPtr<WebKitUserContentManager> contentManager_;
  linux_platform::GObjectPtr<WebKitWebView> webView_;
};

}  // namespace vantu::gtk
