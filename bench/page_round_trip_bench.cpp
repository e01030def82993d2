// Page <-> native round trips in the WebKitGTK container, against a bare
// WebKitGTK echo in the same run (a message handler in the page's world and
// evaluate-JavaScript back, no library). Prints figures; needs a display
// (bench.sh runs it under xvfb-run when there is none).
//
// Measured in the page with performance.now():
//   sequential: one call at a time, the next sent from the answer's callback;
//   pipelined:  every call sent at once, until the last answer;
//   10 MiB:     calls answered with a 10 MiB string, one at a time.
// Then one 50 MiB answer through the library, while the resident memory of
// this (UI) process and of the web process is sampled: the peak growth of
// each, against the answer's size.
//
// The goals printed beside the ratios: pipelined at most 0.5x the bare
// echo per call, sequential at most 1.05x, a 10 MiB answer at most 0.33x,
// and 50 MiB without either process growing by more than 3x the answer.

#include <fmt/format.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

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
constexpr std::size_t kHugeBytes = 50 * 1024 * 1024;

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
class HugeHandler : public H5BaseHandler {
 public:
  void handleWith(H5HandlerInputParams params) override {
    // Set rather than listed: an initializer list would copy the 50 MiB.
    Dict answer;
    answer.set("data", std::string(kHugeBytes, 'x'));
    params.callback(answer);
  }
};

// Resident memory in bytes of a process (VmRSS), 0 when it is gone.
std::int64_t residentBytes(int pid) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmRSS:", 0) == 0) return std::strtoll(line.c_str() + 6, nullptr, 10) * 1024;
  }
  return 0;
}

// The web processes WebKit started for this process (descendants named
// WebKitWebProcess; the name is cut to 15 characters).
std::vector<int> webProcesses() {
  std::map<int, int> parent;
  std::map<int, std::string> name;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string pid = entry.path().filename();
    if (pid.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream stat(entry.path() / "stat");
    std::string text((std::istreambuf_iterator<char>(stat)), {});
    const auto open = text.find('('), close = text.rfind(')');
    if (open == std::string::npos || close == std::string::npos) continue;
    name[std::stoi(pid)] = text.substr(open + 1, close - open - 1);
    parent[std::stoi(pid)] = std::atoi(text.c_str() + close + 4);  // ") S PPID"
  }
  std::vector<int> found;
  for (const auto& [pid, comm] : name) {
    if (comm.rfind("WebKitWebProces", 0) != 0) continue;
    for (int p = parent[pid]; p > 1; p = parent.count(p) ? parent[p] : 0) {
      if (p == ::getpid()) {
        found.push_back(pid);
        break;
      }
    }
  }
  return found;
}

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

void print(const char* what, double library, double bare, int count, const char* unit, double goal) {
  const double ratio = library / bare;
  fmt::print("{:<34} library {:9.2f} {}   bare {:9.2f} {}   ratio {:.3f} (goal <= {:.2f}: {})\n", what,
             library / count, unit, bare / count, unit, ratio, goal, ratio <= goal ? "met" : "NOT met");
}

struct MemoryPeaks {
  std::int64_t uiGrowth = 0, webGrowth = 0;
  double ms = 0;
};

// One 50 MiB answer through the library, sampling both processes' memory.
std::optional<MemoryPeaks> runHuge() {
  gtk::ContainerOptions options;
  options.uniqueAppId = "bench";
  options.webView.registry = std::make_shared<BridgeRegistry>();
  options.webView.registry->add("benchHuge", [] { return std::make_shared<HugeHandler>(); });
  auto stack = std::make_shared<gtk::ContainerStack>(options);
  auto screen = stack->open("about:blank");
  WebKitWebView* view = screen->webView()->webKitView();
  const std::string page = R"(<html><body><script>
function runHuge() {
  var t0 = performance.now();
  vantu.call("benchHuge", {}, function (answer) {
    document.title = "result:" + JSON.stringify([answer.data.length, performance.now() - t0]);
  });
}</script></body></html>)";
  webkit_web_view_load_html(view, page.c_str(), "http://127.0.0.1/");
  gtk::runMainContextUntil([&] { return !webkit_web_view_is_loading(view); }, std::chrono::seconds(10));
  // Let the page settle before the baseline.
  gtk::runMainContextUntil([] { return false; }, std::chrono::milliseconds(300));
  const auto web = webProcesses();
  std::map<int, std::int64_t> webBase, webPeak;
  for (int pid : web) webBase[pid] = webPeak[pid] = residentBytes(pid);
  const std::int64_t uiBase = residentBytes(::getpid());
  std::atomic<std::int64_t> uiPeak = uiBase;
  std::atomic<bool> sampling = true;
  std::thread sampler([&] {
    while (sampling) {
      uiPeak = std::max<std::int64_t>(uiPeak, residentBytes(::getpid()));
      for (int pid : web) webPeak[pid] = std::max(webPeak[pid], residentBytes(pid));
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  webkit_web_view_evaluate_javascript(view, "runHuge()", -1, nullptr, nullptr, nullptr, nullptr, nullptr);
  std::string title;
  const bool done = gtk::runMainContextUntil(
      [&] {
        const char* t = webkit_web_view_get_title(view);
        title = t ? t : "";
        return title.rfind("result:", 0) == 0;
      },
      std::chrono::minutes(2));
  // Memory freed late still counts: sample a little longer.
  gtk::runMainContextUntil([] { return false; }, std::chrono::milliseconds(500));
  sampling = false;
  sampler.join();
  if (!done) return std::nullopt;
  auto parsed = json::parse(title.substr(7));
  const Array* a = parsed.ok() ? parsed.value().asArray() : nullptr;
  if (!a || a->size() != 2 || (*a)[0].asInt() != static_cast<std::int64_t>(kHugeBytes)) return std::nullopt;
  MemoryPeaks peaks;
  peaks.uiGrowth = uiPeak - uiBase;
  for (int pid : web) peaks.webGrowth = std::max(peaks.webGrowth, webPeak[pid] - webBase[pid]);
  peaks.ms = *(*a)[1].asNumber();
  return peaks;
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
  print("sequential round trip (per call)", library.sequentialMs * 1000, bare.sequentialMs * 1000, kSequential, "us",
        1.05);
  print("pipelined (per call)", library.pipelinedMs * 1000, bare.pipelinedMs * 1000, kPipelined, "us", 0.5);
  print("10 MiB answer (per call)", library.largeMs, bare.largeMs, kLarge, "ms", 0.33);
  auto huge = runHuge();
  if (!huge) {
    fmt::print(stderr, "page_round_trip_bench: the 50 MiB answer did not arrive\n");
    return 1;
  }
  const double mib = 1024.0 * 1024.0;
  const double answerMib = static_cast<double>(kHugeBytes) / mib;
  for (auto [what, growth] : {std::pair{"UI process", huge->uiGrowth}, std::pair{"web process", huge->webGrowth}}) {
    const double times = static_cast<double>(growth) / static_cast<double>(kHugeBytes);
    fmt::print("50 MiB answer, {:<11} peak growth {:7.1f} MiB = {:.2f}x the answer (goal <= 3x: {})\n", what,
               static_cast<double>(growth) / mib, times, times <= 3.0 ? "met" : "NOT met");
  }
  fmt::print("50 MiB answer delivered in {:.1f} ms ({:.0f} MiB)\n", huge->ms, answerMib);
  return 0;
}
