// Page <-> native round trips in the WebKitGTK container, against a bare
// WebKitGTK echo in the same run (a message handler in the page's world and
// evaluate-JavaScript back, no library). Prints figures; needs a display
// (bench.sh runs it under xvfb-run when there is none).
//
// Measured in the page with performance.now():
//   sequential: one call at a time, the next sent from the answer's callback;
//   pipelined:  every call sent at once, until the last answer;
//   10 MiB:     calls answered with a 10 MiB string, one at a time.

#include <fmt/format.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "platforms/gtk/container_stack.h"
#include "platforms/gtk/glib_main_context.h"
#include "platforms/gtk/gtk_platform.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/value/json.h"

namespace {

using namespace vantu;

constexpr int kSequential = 3000;
constexpr int kPipelined = 3000;
constexpr int kLarge = 10;
constexpr std::size_t kLargeBytes = 10 * 1024 * 1024;
constexpr int kRounds = 3;

// The same driver for both pages; `call(bridge, data, callback)` differs.
const std::string kDriver = fmt::format(R"js(
function sequential(n, bridge, done) {{
  var t0 = performance.now();
  (function next(i) {{
    if (i === n) return done(performance.now() - t0);
    call(bridge, {{i: i}}, function () {{ next(i + 1); }});
  }})(0);
}}
function pipelined(n, done) {{
  var t0 = performance.now(), left = n;
  for (var i = 0; i < n; i++) call("benchEcho", {{i: i}}, function () {{ if (--left === 0) done(performance.now() - t0); }});
}}
function runAll() {{
  sequential({0}, "benchEcho", function (seq) {{
    pipelined({1}, function (pipe) {{
      sequential({2}, "benchLarge", function (large) {{
        document.title = "result:" + JSON.stringify([seq, pipe, large]);
      }});
    }});
  }});
}}
)js",
                                              kSequential, kPipelined, kLarge);

const std::string kLibraryPage = "<html><body><script>function call(b, d, cb) { vantu.call(b, d, cb); }" + kDriver +
                                 "</script></body></html>";

// The bare page posts straight to a main-world handler and keeps its own
// callback table, as a hand-written bridge would.
const std::string kBarePage = R"(<html><body><script>
var callbacks = {}, lastId = 0;
window.__echo = function (id, payload) { var cb = callbacks[id]; delete callbacks[id]; cb(payload); };
function call(bridge, data, cb) {
  var id = ++lastId; callbacks[id] = cb;
  window.webkit.messageHandlers.echo.postMessage(JSON.stringify({id: id, bridge: bridge, data: data}));
}
)" + kDriver + "</script></body></html>";

class EchoHandler : public H5BaseHandler {
 public:
  void handleWith(H5HandlerInputParams params) override { params.callback(Dict{{"data", params.data}}); }
};
class LargeHandler : public H5BaseHandler {
 public:
  void handleWith(H5HandlerInputParams params) override {
    params.callback(Dict{{"data", std::string(kLargeBytes, 'x')}});
  }
};

struct Figures {
  double sequentialMs = 0, pipelinedMs = 0, largeMs = 0;
};

std::optional<Figures> waitForFigures(WebKitWebView* view) {
  std::string title;
  bool done = gtk::runMainContextUntil(
      [&] {
        const char* t = webkit_web_view_get_title(view);
        title = t ? t : "";
        return title.rfind("result:", 0) == 0;
      },
      std::chrono::minutes(5));
  if (!done) return std::nullopt;
  auto parsed = json::parse(title.substr(7));
  const Array* a = parsed.ok() ? parsed.value().asArray() : nullptr;
  if (!a || a->size() != 3) return std::nullopt;
  return Figures{*(*a)[0].asNumber(), *(*a)[1].asNumber(), *(*a)[2].asNumber()};
}

void startWhenLoaded(WebKitWebView* view) {
  g_signal_connect(view, "load-changed", G_CALLBACK(+[](WebKitWebView* v, WebKitLoadEvent e, gpointer) {
                     if (e == WEBKIT_LOAD_FINISHED) {
                       webkit_web_view_evaluate_javascript(v, "runAll()", -1, nullptr, nullptr, nullptr, nullptr, nullptr);
                     }
                   }),
                   nullptr);
}

std::optional<Figures> runLibrary() {
  gtk::ContainerOptions options;
  options.uniqueAppId = "bench";
  options.webView.registry = std::make_shared<BridgeRegistry>();
  options.webView.registry->add("benchEcho", [] { return std::make_shared<EchoHandler>(); });
  options.webView.registry->add("benchLarge", [] { return std::make_shared<LargeHandler>(); });
  auto stack = std::make_shared<gtk::ContainerStack>(options);
  auto screen = stack->open("about:blank");
  WebKitWebView* view = screen->webView()->webKitView();
  gtk::runMainContextUntil([&] { return !webkit_web_view_is_loading(view); }, std::chrono::seconds(10));
  startWhenLoaded(view);
  webkit_web_view_load_html(view, kLibraryPage.c_str(), "http://127.0.0.1/");
  return waitForFigures(view);
}

std::optional<Figures> runBare() {
  WebKitUserContentManager* manager = webkit_user_content_manager_new();
  webkit_user_content_manager_register_script_message_handler(manager, "echo", nullptr);
  auto* view = WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "user-content-manager", manager, nullptr));
  g_signal_connect(manager, "script-message-received::echo", G_CALLBACK(+[](WebKitUserContentManager*, JSCValue* value, gpointer v) {
                     char* text = jsc_value_to_string(value);
                     const char* idText = std::strstr(text, "\"id\":");
                     const long id = idText ? std::strtol(idText + 5, nullptr, 10) : 0;
                     const bool large = std::strstr(text, "\"benchLarge\"") != nullptr;
                     std::string script = "window.__echo(" + std::to_string(id) + ",";
                     if (large) {
                       script += "{\"data\":\"" + std::string(kLargeBytes, 'x') + "\"}";
                     } else {
                       script += text;
                     }
                     script += ");";
                     g_free(text);
                     webkit_web_view_evaluate_javascript(WEBKIT_WEB_VIEW(v), script.data(), static_cast<gssize>(script.size()),
                                                         nullptr, nullptr, nullptr, nullptr, nullptr);
                   }),
                   view);
  GtkWidget* window = gtk_window_new();
  gtk_window_set_default_size(GTK_WINDOW(window), 414, 800);
  gtk_window_set_child(GTK_WINDOW(window), GTK_WIDGET(view));
  gtk_window_present(GTK_WINDOW(window));
  startWhenLoaded(view);
  webkit_web_view_load_html(view, kBarePage.c_str(), "http://127.0.0.1/");
  auto figures = waitForFigures(view);
  gtk_window_destroy(GTK_WINDOW(window));
  g_object_unref(manager);
  return figures;
}

void print(const char* what, double library, double bare, int count, const char* unit) {
  fmt::print("{:<34} library {:9.2f} {}   bare {:9.2f} {}   ratio {:.3f}\n", what, library / count, unit, bare / count,
             unit, library / bare);
}

}  // namespace

int main() {
  auto bundle = gtk::makeGtkPlatform({});
  if (!bundle) {
    fmt::print(stderr, "page_round_trip_bench: no display\n");
    return 2;
  }
  installPlatform(bundle->platform);
  Laizaxlu::shared().setupWhiteListWebDomains({"127.0.0.1"});
  fmt::print("page round trips ({} sequential, {} pipelined, {} x 10 MiB answers; best of {} rounds)\n", kSequential,
             kPipelined, kLarge, kRounds);
  Figures library{1e300, 1e300, 1e300}, bare{1e300, 1e300, 1e300};
  for (int round = 0; round < kRounds; ++round) {
    // Alternate the order so neither side always runs on a warmer machine.
    auto a = round % 2 ? runBare() : runLibrary();
    auto b = round % 2 ? runLibrary() : runBare();
    auto& l = round % 2 ? b : a;
    auto& r = round % 2 ? a : b;
    if (!l || !r) {
      fmt::print(stderr, "page_round_trip_bench: a page did not report\n");
      return 1;
    }
    library = {std::min(library.sequentialMs, l->sequentialMs), std::min(library.pipelinedMs, l->pipelinedMs),
               std::min(library.largeMs, l->largeMs)};
    bare = {std::min(bare.sequentialMs, r->sequentialMs), std::min(bare.pipelinedMs, r->pipelinedMs),
            std::min(bare.largeMs, r->largeMs)};
  }
  print("sequential round trip (per call)", library.sequentialMs * 1000, bare.sequentialMs * 1000, kSequential, "us");
  print("pipelined (per call)", library.pipelinedMs * 1000, bare.pipelinedMs * 1000, kPipelined, "us");
  print("10 MiB answer (per call)", library.largeMs, bare.largeMs, kLarge, "ms");
  return 0;
}
