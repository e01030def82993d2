#include "apps/vantu-h5/run_command.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <stdexcept>

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
#include "vantu/runtime/environment_services.h"
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

/// The bridge-call log: one line per call, per answer, per progress report
/// and per event, on standard output.
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
  log.progress = [stamp](std::int64_t id, std::string_view bridge, const TransferProgress& progress) {
    fmt::print("{} progress #{} {} {} of {} bytes\n", stamp(), id, bridge, progress.received,
               progress.total ? std::to_string(*progress.total) : std::string("?"));
    std::fflush(stdout);
  };
  log.event = [stamp](std::string_view name, const Value& detail) {
    fmt::print("{} event  {} {}\n", stamp(), name, shortened(json::write(detail)));
    std::fflush(stdout);
  };
  log.rejected = [stamp](std::string_view reason) {
    fmt::print("{} refused: {}\n", stamp(), reason);
    std::fflush(stdout);
  };
  return log;
}

/// Why the run cannot start: printed on standard error, exit code 2.
class CannotStart : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The device profile named by --device-profile, read but not yet applied.
std::optional<Value> readDeviceProfile(const RunOptions& options) {
  if (options.deviceProfile.empty()) return std::nullopt;
  auto parsed = json::parseFile(options.deviceProfile);
  if (!parsed) throw CannotStart("cannot read " + options.deviceProfile);
  if (!parsed->ok()) throw CannotStart(options.deviceProfile + ": " + parsed->error().message);
  Value profile = std::move(parsed->value());
  if (!profile.isDict()) throw CannotStart(options.deviceProfile + ": must be a JSON object");
  return profile;
}

AppType readAppType(const RunOptions& options) {
  auto appType = appTypeFromRawValue(options.appType);
  if (!appType) throw CannotStart("--app-type must be \"miniapp\" or \"generic\"");
  return *appType;
}

std::filesystem::path makeDataDirectory(const RunOptions& options) {
  std::filesystem::path dataDir = options.dataDir.empty() ? defaultDataDir() : std::filesystem::path(options.dataDir);
  std::error_code ec;
  std::filesystem::create_directories(dataDir, ec);
  if (ec) throw CannotStart("cannot create data directory " + dataDir.string() + ": " + ec.message());
  return dataDir;
}

/// A device profile replaces the services of its sections. Pickers it
/// scripts are answered from it; the others (left out or "hold") show their
/// dialogs.
void applyDeviceProfile(const RunOptions& options, const Value& profile, Platform& platform,
                        gtk::ContainerApplication* application) {
  auto loaded = sim::DeviceProfile::load(profile, platform);
  if (auto* error = std::get_if<std::string>(&loaded)) throw CannotStart(options.deviceProfile + ": " + *error);
  auto& deviceProfile = std::get<sim::DeviceProfile>(loaded);
  deviceProfile.installInto(platform);
  std::shared_ptr<sim::SimPickers> pickers = deviceProfile.pickers();
  if (!pickers) return;
  pickers->baseDirectory = std::filesystem::absolute(options.deviceProfile).parent_path();
  if (application) application->setCameraScripted(pickers->camera.action != sim::SimPickers::Action::hold);
  gtk::setPickerScript([pickers](const std::shared_ptr<ViewController>& presented) {
    if (!pickers->answers(*presented)) return false;
    pickers->presented(presented);
    return true;
  });
}

/// The GTK platform with the device profile applied, installed and with the
/// environment's services connected.
linux_platform::LinuxPlatform installGtkPlatform(const RunOptions& options, const std::filesystem::path& dataDir,
                                                 const std::optional<Value>& profile) {
  linux_platform::LinuxPlatformOptions platformOptions;
  platformOptions.dataDirectory = dataDir;
  auto bundle = gtk::makeGtkPlatform(std::move(platformOptions));
  if (!bundle) throw CannotStart("no display to open a window on (set DISPLAY, or run under xvfb-run)");
  auto application = std::dynamic_pointer_cast<gtk::ContainerApplication>(bundle->platform->application);
  if (application) application->setCameraSource(options.cameraSource);
  if (profile) applyDeviceProfile(options, *profile, *bundle->platform, application.get());
  installPlatform(bundle->platform);
  connectEnvironmentServices();
  return std::move(*bundle);
}

/// What the container opens, and the web domains that may call bridges.
struct ServedPage {
  /// Serves the target when it is a directory.
  std::unique_ptr<gtk::DirectoryServer> server;
  std::string url;
  std::vector<std::string> allowedDomains;
  std::string appId;
};

ServedPage decideServedPage(const RunOptions& options) {
  ServedPage page;
  page.allowedDomains = options.allowDomains;
  std::error_code ec;
  const bool isDirectory = std::filesystem::is_directory(options.target, ec);
  if (isDirectory) {
    try {
      page.server = std::make_unique<gtk::DirectoryServer>(options.target);
    } catch (const std::exception& e) {
      throw CannotStart(e.what());
    }
    page.url = page.server->origin() + "/" + options.page;
    page.allowedDomains.push_back("127.0.0.1");
  } else {
    auto parsed = Url::parse(options.target);
    if (!parsed || !parsed->scheme() || !parsed->host()) {
      throw CannotStart(options.target + " is neither a directory nor a URL");
    }
    page.url = options.target;
    page.allowedDomains.push_back(*parsed->host());
  }
  if (options.selfTest) page.url += (page.url.find('?') == std::string::npos ? "?" : "&") + std::string("selftest=1");

  page.appId = options.appId;
  if (page.appId.empty()) {
    page.appId =
        isDirectory ? std::filesystem::absolute(options.target).lexically_normal().filename().string() : page.url;
    if (page.appId.empty()) page.appId = "vantu.run";
  }
  return page;
}

/// The container with every bridge registered and the call log attached,
/// made the environment's data provider.
std::shared_ptr<gtk::ContainerStack> makeContainerStack(const RunOptions& options, AppType appType,
                                                        const std::string& appId, Clock::time_point start) {
  gtk::ContainerOptions containerOptions;
  containerOptions.uniqueAppId = appId;
  containerOptions.appType = appType;
  containerOptions.webView.registry = std::make_shared<BridgeRegistry>();
  registerAllBridges(*containerOptions.webView.registry);
  containerOptions.webView.observer = callLog(start, options.quiet);
  containerOptions.webView.developerExtras = options.inspector;
  auto stack = std::make_shared<gtk::ContainerStack>(containerOptions);
  Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(stack, nullptr, nullptr));
  return stack;
}

/// Sets `closed` when the user closes the stack's window.
void watchWindowClose(gtk::ContainerStack& stack, bool& closed) {
  g_signal_connect(stack.window()->gtkWindow(), "close-request", G_CALLBACK(+[](GtkWindow*, gpointer flag) -> gboolean {
                     *static_cast<bool*>(flag) = true;
                     return FALSE;
                   }),
                   &closed);
}

int runInteractively(const bool& closed) {
  gtk::runMainContextUntil([&] { return closed; }, std::chrono::hours(24 * 365));
  return 0;
}

/// The self-test: the page reports its outcome in its title. Exit code 0
/// when it reported "done".
int runSelfTest(const RunOptions& options, gtk::ContainerStack& stack, const bool& closed, Clock::time_point start) {
  const auto timeout = std::chrono::duration_cast<Duration>(std::chrono::duration<double>(options.timeoutSeconds));
  std::string outcome;
  auto finished = [&] {
    for (const auto& vc : stack.navigation()->viewControllers()) {
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
  if (!options.screenshot.empty() && stack.topScreen()) {
    shotError = stack.topScreen()->webView()->saveSnapshot(options.screenshot, std::chrono::seconds(20));
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

}  // namespace

int runContainer(const RunOptions& options) {
  const auto start = Clock::now();
  // Declared in this order so that the container goes before what it serves
  // and the platform last.
  std::optional<linux_platform::LinuxPlatform> platform;
  ServedPage page;
  std::shared_ptr<gtk::ContainerStack> stack;
  std::filesystem::path dataDir;
  try {
    auto profile = readDeviceProfile(options);
    const AppType appType = readAppType(options);
    dataDir = makeDataDirectory(options);
    platform = installGtkPlatform(options, dataDir, profile);
    page = decideServedPage(options);
    Laizaxlu::shared().setupWhiteListWebDomains(page.allowedDomains);
    stack = makeContainerStack(options, appType, page.appId, start);
  } catch (const CannotStart& e) {
    std::cerr << "vantu-h5 run: " << e.what() << "\n";
    return 2;
  }

  fmt::print("vantu-h5 run: {} (app {}, data {}, allowed domains: {})\n", page.url, page.appId, dataDir.string(),
             fmt::join(page.allowedDomains, ", "));
  std::fflush(stdout);
  auto first = stack->open(page.url);
  if (options.inspector) webkit_web_inspector_show(webkit_web_view_get_inspector(first->webView()->webKitView()));

  bool closed = false;
  watchWindowClose(*stack, closed);
  return options.selfTest ? runSelfTest(options, *stack, closed, start) : runInteractively(closed);
}

}  // namespace vantu::cli
