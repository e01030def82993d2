#include "platforms/gtk/container_web_view.h"

#include <glib/gmarkup.h>

#include "platforms/gtk/glib_main_context.h"
#include "platforms/linux/gobject_ptr.h"
#include "vantu/container/h5_provider_error.h"
#include "vantu/runtime/js_sdk.h"
#include "vantu/runtime/page_events.h"

namespace vantu::gtk {
namespace {

using linux_platform::GCharPtr;
using linux_platform::GErrorPtr;
using linux_platform::GObjectPtr;
using linux_platform::outParam;

constexpr const char* kWorld = "vantu";
constexpr const char* kHandler = "vantuBridge";

// Runs in the isolated world; takes only string messages, and tells the SDK
// it took one by cancelling the event.
constexpr const char* kRelay = R"js(document.addEventListener("vantu:post", function (event) {
  if (typeof event.detail !== "string") return;
  event.preventDefault();
  window.webkit.messageHandlers.vantuBridge.postMessage(event.detail);
});)js";

/// Into the top frame at document start; `world` null: the page's own world.
void addScript(WebKitUserContentManager* manager, const char* source, const char* world) {
  const auto frames = WEBKIT_USER_CONTENT_INJECT_TOP_FRAME;
  const auto time = WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START;
  WebKitUserScript* script = world ? webkit_user_script_new_for_world(source, frames, time, world, nullptr, nullptr)
                                   : webkit_user_script_new(source, frames, time, nullptr, nullptr);
  webkit_user_content_manager_add_script(manager, script);
  webkit_user_script_unref(script);
}

}  // namespace

std::shared_ptr<ContainerWebView> ContainerWebView::make(const WebViewConfig& config) {
  auto view = std::make_shared<ContainerWebView>(config);
  view->installScrollView(std::make_shared<ScrollView>());
  return view;
}

ContainerWebView::ContainerWebView(const WebViewConfig& config)
    : bridge_(
          config.registry, [this](std::string batch) { deliver(std::move(batch)); }, [this] { return uri(); }),
      contentManager_(webkit_user_content_manager_new()) {
  bridge_.setObserver(config.observer);
  bridge_.setDomainWhitelist(config.allowedDomains);
  webkit_user_content_manager_register_script_message_handler(contentManager_.get(), kHandler, kWorld);
  const std::string sdk(javascriptSdkSource());
  addScript(contentManager_.get(), sdk.c_str(), nullptr);
  addScript(contentManager_.get(), kRelay, kWorld);

  webView_.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(
      g_object_new(WEBKIT_TYPE_WEB_VIEW, "user-content-manager", contentManager_.get(), nullptr))));
  gtk_widget_set_vexpand(widget(), TRUE);
  gtk_widget_set_hexpand(widget(), TRUE);
  WebKitSettings* settings = webkit_web_view_get_settings(webView_.get());
  webkit_settings_set_enable_developer_extras(settings, config.developerExtras);

  g_signal_connect(contentManager_.get(), "script-message-received::vantuBridge", G_CALLBACK(onMessage), this);
  g_signal_connect(webView_.get(), "decide-policy", G_CALLBACK(onDecidePolicy), this);
  g_signal_connect(webView_.get(), "load-changed", G_CALLBACK(onLoadChanged), this);
  g_signal_connect(webView_.get(), "notify::title", G_CALLBACK(onTitle), this);
  g_signal_connect(webView_.get(), "map", G_CALLBACK(onMap), this);
  g_signal_connect(webView_.get(), "unmap", G_CALLBACK(onUnmap), this);
}

ContainerWebView::~ContainerWebView() {
  g_signal_handlers_disconnect_by_data(contentManager_.get(), this);
  g_signal_handlers_disconnect_by_data(webView_.get(), this);
  webkit_user_content_manager_unregister_script_message_handler(contentManager_.get(), kHandler, kWorld);
}

void ContainerWebView::deliver(std::string batch) {
  if (batch.size() < kInlineBatchLimit) {
    const std::string script = page::receiveScript(batch);
    webkit_web_view_evaluate_javascript(webView_.get(), script.data(), static_cast<gssize>(script.size()), nullptr,
                                        nullptr, nullptr, nullptr, nullptr);
    return;
  }
  // The text is handed over as it is, without a copy: the GVariant owns the
  // string (with its terminating NUL) until WebKit has sent it. The
  // library's JSON writer only writes valid UTF-8, so it is trusted.
  auto* text = new std::string(std::move(batch));
  GVariant* argument =
      g_variant_new_from_data(G_VARIANT_TYPE_STRING, text->c_str(), text->size() + 1, TRUE,
                              [](gpointer data) { delete static_cast<std::string*>(data); }, text);
  GVariantBuilder arguments;
  g_variant_builder_init(&arguments, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&arguments, "{sv}", "batch", argument);
  webkit_web_view_call_async_javascript_function(webView_.get(), "window.vantu.__receive(batch);", -1,
                                                 g_variant_builder_end(&arguments), nullptr, nullptr, nullptr, nullptr,
                                                 nullptr);
}

void ContainerWebView::onMap(GtkWidget*, gpointer self) {
  static_cast<ContainerWebView*>(self)->emit(page::kContainerShownEvent, Value());
}

void ContainerWebView::onUnmap(GtkWidget*, gpointer self) {
  static_cast<ContainerWebView*>(self)->emit(page::kContainerHiddenEvent, Value());
}

void ContainerWebView::load(const std::string& url) { webkit_web_view_load_uri(webView_.get(), url.c_str()); }

std::string ContainerWebView::uri() const {
  const char* uri = webkit_web_view_get_uri(webView_.get());
  return uri ? uri : "";
}

std::string ContainerWebView::title() const {
  const char* title = webkit_web_view_get_title(webView_.get());
  return title ? title : "";
}

std::optional<std::string> ContainerWebView::saveSnapshot(const std::string& pngPath, Duration timeout) {
  struct Pending {
    bool finished = false;
    std::optional<std::string> error;
    std::string path;
  };
  auto pending = std::make_shared<Pending>();
  pending->path = pngPath;
  webkit_web_view_get_snapshot(
      webView_.get(), WEBKIT_SNAPSHOT_REGION_VISIBLE, WEBKIT_SNAPSHOT_OPTIONS_NONE, nullptr,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        auto* state = static_cast<std::shared_ptr<Pending>*>(data);
        GErrorPtr error;
        GObjectPtr<GdkTexture> texture(
            webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(source), result, outParam(error)));
        if (!texture) {
          (*state)->error = error ? error->message : "no snapshot";
        } else if (!gdk_texture_save_to_png(texture.get(), (*state)->path.c_str())) {
          (*state)->error = "cannot write " + (*state)->path;
        }
        (*state)->finished = true;
        delete state;
      },
      new std::shared_ptr<Pending>(pending));
  if (!runMainContextUntil([&] { return pending->finished; }, timeout)) return "the snapshot timed out";
  return pending->error;
}

void ContainerWebView::didChange(Change change) {
  if (change == Change::Hidden) gtk_widget_set_visible(widget(), !isHidden());
}

void ContainerWebView::onMessage(WebKitUserContentManager*, JSCValue* value, gpointer self) {
  auto* view = static_cast<ContainerWebView*>(self);
  if (!jsc_value_is_string(value)) return;  // the relay sends strings only
  GCharPtr text(jsc_value_to_string(value));
  // The handler is reachable from the top frame's isolated world only; the
  // page it belongs to is the web view's current one.
  view->bridge_.receive(text.get(), page::Origin{true, view->uri()});
}

gboolean ContainerWebView::onDecidePolicy(WebKitWebView*, WebKitPolicyDecision* decision,
                                          WebKitPolicyDecisionType type, gpointer self) {
  // WebKitGTK does not say which frame a navigation action is for; the
  // response of a main-frame load does, and nothing of a refused page is
  // shown before it.
  if (type != WEBKIT_POLICY_DECISION_TYPE_RESPONSE) return FALSE;
  auto* response = WEBKIT_RESPONSE_POLICY_DECISION(decision);
  if (!webkit_response_policy_decision_is_main_frame_main_resource(response)) return FALSE;
  auto* view = static_cast<ContainerWebView*>(self);
  const std::string uri = webkit_uri_request_get_uri(webkit_response_policy_decision_get_request(response));
  if (!view->errorPageFor_.empty() && uri == view->errorPageFor_) return FALSE;
  // The gate a top-frame bridge call must pass: the web-domain whitelist.
  if (uri.rfind("about:", 0) == 0 || view->bridge_.admits({true, uri})) return FALSE;
  webkit_policy_decision_ignore(decision);
  view->refuse(uri);
  return TRUE;
}

void ContainerWebView::refuse(const std::string& url) {
  errorPageFor_ = url;
  const std::string html = refusedPageHtml(url);
  webkit_web_view_load_alternate_html(webView_.get(), html.c_str(), url.c_str(), nullptr);
}

std::string ContainerWebView::refusedPageHtml(const std::string& url) {
  const auto error = H5ProviderError::urlDomainWhitelistingError();
  auto escape = [](const std::string& text) {
    GCharPtr escaped(g_markup_escape_text(text.c_str(), static_cast<gssize>(text.size())));
    return std::string(escaped.get());
  };
  return "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>" + escape(error.message()) +
         "</title></head><body style=\"font-family:sans-serif;margin:2em\"><h2>" + escape(error.message()) +
         "</h2><p>" + escape(error.localizedDescription()) + "</p><p><code>" + escape(url) +
         "</code></p></body></html>";
}

void ContainerWebView::onLoadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self) {
  auto* view = static_cast<ContainerWebView*>(self);
  if (event == WEBKIT_LOAD_COMMITTED) view->bridge_.pageReplaced();
  if (event == WEBKIT_LOAD_FINISHED && view->uri() != view->errorPageFor_) view->errorPageFor_.clear();
}

void ContainerWebView::onTitle(GObject*, GParamSpec*, gpointer self) {
  auto* view = static_cast<ContainerWebView*>(self);
  if (view->titleListener_) view->titleListener_(view->title());
}

}  // namespace vantu::gtk
