#include "apps/vantu-h5/run_command.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <chrono>
#include <filesystem>
#include <iostream>

#include "platforms/gtk/container_application.h"
#include "platforms/gtk/container_stack.h"
#include "platforms/gtk/directory_server.h"
#include "platforms/gtk/glib_main_context.h"
#include "platforms/gtk/gtk_dialogs.h"
#include "platforms/gtk/gtk_platform.h"
#include "platforms/sim/scenario.h"
#include "platforms/sim/device_profile.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/value/json.h"

namespace vantu::cli {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::string_view kSelfTestPrefix = "vantu-selftest:";
constexpr std::size_t kLoggedTextLimit = 400;

std::string shortened(std::string text) {
  if (text.size() > kLoggedTextLimit) text = text.substr(0, kLoggedTextLimit) + fmt::format("... ({} bytes)", text.size());
  return text;
}

std::filesystem::path defaultDataDir() { return std::filesystem::path(g_get_user_data_dir()) / "vantu-h5"; }

/// The bridge-call log: one line per call and per answer, on standard output.
page::PageObserver callLog(Clock::time_point start, bool quiet) {
  auto stamp = [start] {
    return fmt::format("[{:9.3f} ms]", std::chrono::duration<double, std::milli>(Clock::now() - start).count());
  };
  page::PageObserver log;
  if (quiet) return log;
  log.call = [stamp](const page::Message& m) {
    fmt::print("{} call   #{} {} {}\n", stamp(), m.id, m.bridge, shortened(json::write(m.data)));
    std::fflush(stdout);
  };
  log.answer = [stamp](std::int64_t id, std::string_view bridge, const Value& answer) {
    fmt::print("{} answer #{} {} {}\n", stamp(), id, bridge.empty() ? "(malformed)" : bridge,
               shortened(json::write(answer)));
    std::fflush(stdout);
  };
  log.rejected = [stamp](std::string_view reason) {
    fmt::print("{} refused: {}\n", stamp(), reason);
    std::fflush(stdout);
  };
  return log;
}

}  // namespace

int runContainer(const RunOptions& options) {
  const auto start = Clock::now();
  auto fail = [](const std::string& message) {
    std::cerr << "vantu-h5 run: " << message << "\n";
    return 2;
  };

  std::optional<Value> profile;
  if (!options.deviceProfile.empty()) {
    auto parsed = json::parseFile(options.deviceProfile);
    if (!parsed) return fail("cannot read " + options.deviceProfile);
    if (!parsed->ok()) return fail(options.deviceProfile + ": " + parsed->error().message);
    profile = std::move(parsed->value());
    if (!profile->isDict()) return fail(options.deviceProfile + ": must be a JSON object");
  }
  auto appType = appTypeFromRawValue(options.appType);
  if (!appType) return fail("--app-type must be \"miniapp\" or \"generic\"");

  const std::filesystem::path dataDir = options.dataDir.empty() ? defaultDataDir() : std::filesystem::path(options.dataDir);
  std::error_code ec;
  std::filesystem::create_directories(dataDir, ec);
  if (ec) return fail("cannot create data directory " + dataDir.string() + ": " + ec.message());

  linux_platform::LinuxPlatformOptions platformOptions;
  platformOptions.dataDirectory = dataDir;
  auto bundle = gtk::makeGtkPlatform(std::move(platformOptions));
  if (!bundle) return fail("no display to open a window on (set DISPLAY, or run under xvfb-run)");
  auto application = std::dynamic_pointer_cast<gtk::ContainerApplication>(bundle->platform->application);
  if (application) application->setCameraSource(options.cameraSource);
  // A device profile replaces the services of its sections. Pickers it
  // scripts are answered from it; the others (left out or "hold") show
  // their dialogs.
  std::shared_ptr<sim::SimPickers> pickers;
  if (profile) {
    auto loaded = sim::DeviceProfile::load(*profile, *bundle->platform);
    if (auto* error = std::get_if<std::string>(&loaded)) return fail(options.deviceProfile + ": " + *error);
    std::get<sim::DeviceProfile>(loaded).installInto(*bundle->platform);
    pickers = std::get<sim::DeviceProfile>(loaded).pickers();
  }
  if (pickers) {
    pickers->baseDirectory = std::filesystem::absolute(options.deviceProfile).parent_path();
    if (application) application->setCameraScripted(pickers->camera.action != sim::SimPickers::Action::hold);
    gtk::setPickerScript([pickers](const std::shared_ptr<ViewController>& presented) {
      if (!pickers->answers(*presented)) return false;
      pickers->presented(presented);
      return true;
    });
  }
  installPlatform(bundle->platform);

  // What to open, and the web domains that may call bridges.
  std::unique_ptr<gtk::DirectoryServer> server;
  std::string url;
  std::vector<std::string> domains = options.allowDomains;
  const bool isDirectory = std::filesystem::is_directory(options.target, ec);
  if (isDirectory) {
    try {
      server = std::make_unique<gtk::DirectoryServer>(options.target);
    } catch (const std::exception& e) {
      return fail(e.what());
    }
    url = server->origin() + "/" + options.page;
    domains.push_back("127.0.0.1");
  } else {
    auto parsed = Url::parse(options.target);
    if (!parsed || !parsed->scheme() || !parsed->host()) return fail(options.target + " is neither a directory nor a URL");
    url = options.target;
    domains.push_back(*parsed->host());
  }
  if (options.selfTest) url += (url.find('?') == std::string::npos ? "?" : "&") + std::string("selftest=1");
  Laizaxlu::shared().setupWhiteListWebDomains(domains);

  std::string appId = options.appId;
  if (appId.empty()) {
    appId = isDirectory ? std::filesystem::absolute(options.target).lexically_normal().filename().string() : url;
    if (appId.empty()) appId = "vantu.run";
  }

  gtk::ContainerOptions containerOptions;
  containerOptions.uniqueAppId = appId;
  containerOptions.appType = *appType;
  containerOptions.webView.registry = std::make_shared<BridgeRegistry>();
  registerAllBridges(*containerOptions.webView.registry);
  containerOptions.webView.observer = callLog(start, options.quiet);
  containerOptions.webView.developerExtras = options.inspector;
  auto stack = std::make_shared<gtk::ContainerStack>(containerOptions);
  Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(stack, nullptr, nullptr));

  fmt::print("vantu-h5 run: {} (app {}, data {}, allowed domains: {})\n", url, appId, dataDir.string(),
             fmt::join(domains, ", "));
  std::fflush(stdout);
  auto first = stack->open(url);
  if (options.inspector) webkit_web_inspector_show(webkit_web_view_get_inspector(first->webView()->webKitView()));

  bool closed = false;
  g_signal_connect(stack->window()->gtkWindow(), "close-request", G_CALLBACK(+[](GtkWindow*, gpointer flag) -> gboolean {
                     *static_cast<bool*>(flag) = true;
                     return FALSE;
                   }),
                   &closed);
  const auto timeout = std::chrono::duration_cast<Duration>(std::chrono::duration<double>(options.timeoutSeconds));

  if (!options.selfTest) {
    gtk::runMainContextUntil([&] { return closed; }, std::chrono::hours(24 * 365));
    return 0;
  }

  // The self-test: the page reports its outcome in its title.
  std::string outcome;
  auto finished = [&] {
    for (const auto& vc : stack->navigation()->viewControllers()) {
      auto screen = std::dynamic_pointer_cast<gtk::ContainerScreen>(vc);
      const std::string title = screen ? screen->webView()->title() : "";
      if (title.rfind(kSelfTestPrefix, 0) == 0) {
        outcome = title.substr(kSelfTestPrefix.size());
        return true;
      }
    }
    return closed;
  };
  const bool ended = gtk::runMainContextUntil(finished, timeout);
  std::optional<std::string> shotError;
  if (!options.screenshot.empty() && stack->topScreen()) {
    shotError = stack->topScreen()->webView()->saveSnapshot(options.screenshot, std::chrono::seconds(20));
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  if (!ended || outcome.empty()) outcome = closed ? "failed: the window was closed" : "failed: timed out";
  fmt::print("self-test: {} after {:.1f} s\n", outcome, seconds);
  if (!options.screenshot.empty()) {
    fmt::print("screenshot: {}\n", shotError ? "not written: " + *shotError : options.screenshot);
  }
  std::fflush(stdout);
  return outcome == "done" ? 0 : 1;
}

}  // namespace vantu::cli
