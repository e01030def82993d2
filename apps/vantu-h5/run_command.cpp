#include "apps/vantu-h5/run_command.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "platforms/sim/device_profile.h"
#include "vantu/core/url.h"
#include "vantu/gtk/container.h"
#include "vantu/gtk/directory_server.h"
#include "vantu/gtk/host_platform.h"
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

/// The host-delegate log: one line per call the profile's delegate answers.
sim::SimHostDelegate::CallRecorder delegateLog(Clock::time_point start) {
  return [start](std::string_view delegate, std::string_view operation, Dict arguments) {
    fmt::print("[{:9.3f} ms] host   {}.{} {}\n",
               std::chrono::duration<double, std::milli>(Clock::now() - start).count(), delegate, operation,
               shortened(json::write(Value(std::move(arguments)))));
    std::fflush(stdout);
  };
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

/// The device profile, loaded against the platform it then adjusts.
struct AppliedProfile {
  std::optional<sim::DeviceProfile> profile;
};

/// A device profile replaces the services of its sections. Pickers it
/// scripts are answered from it; the others (left out or "hold") show their
/// dialogs. Its host delegate answers the host-delegated bridges, and the
/// delegate calls it answers go to the call log.
void applyDeviceProfile(const RunOptions& options, const Value& profile, Platform& platform, AppliedProfile& applied) {
  auto loaded = sim::DeviceProfile::load(profile, platform);
  if (auto* error = std::get_if<std::string>(&loaded)) throw CannotStart(options.deviceProfile + ": " + *error);
  applied.profile = std::move(std::get<sim::DeviceProfile>(loaded));
  applied.profile->installInto(platform);
}

void scriptPickers(const RunOptions& options, const sim::DeviceProfile& profile, gtk::HostPlatform& host) {
  std::shared_ptr<sim::SimPickers> pickers = profile.pickers();
  if (!pickers) return;
  pickers->baseDirectory = std::filesystem::absolute(options.deviceProfile).parent_path();
  host.scriptPickers(
      [pickers](const std::shared_ptr<ViewController>& presented) {
        if (!pickers->answers(*presented)) return false;
        pickers->presented(presented);
        return true;
      },
      pickers->camera.action != sim::SimPickers::Action::hold);
}

/// The GTK platform with the device profile applied, installed and with the
/// environment's services connected.
std::unique_ptr<gtk::HostPlatform> installHostPlatform(const RunOptions& options, const std::filesystem::path& dataDir,
                                                       const std::optional<Value>& profile, AppliedProfile& applied) {
  gtk::HostPlatform::Options platformOptions;
  platformOptions.dataDirectory = dataDir;
  platformOptions.cameraSource = options.cameraSource;
  std::optional<CannotStart> refused;
  if (profile) {
    platformOptions.adjust = [&](Platform& platform) {
      try {
        applyDeviceProfile(options, *profile, platform, applied);
      } catch (const CannotStart& e) {
        refused = e;
      }
    };
  }
  auto host = gtk::HostPlatform::install(std::move(platformOptions));
  if (!host) throw CannotStart("no display to open a window on (set DISPLAY, or run under xvfb-run)");
  if (refused) throw *refused;
  if (applied.profile) scriptPickers(options, *applied.profile, *host);
  return host;
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

/// The container in a window of its own, with every bridge registered, the
/// call log attached and the profile's host delegate, if any.
std::unique_ptr<gtk::Container> makeContainer(const RunOptions& options, gtk::HostPlatform& host, AppType appType,
                                              const ServedPage& page, const AppliedProfile& applied,
                                              Clock::time_point start) {
  gtk::Container::Options containerOptions;
  containerOptions.uniqueAppId = page.appId;
  containerOptions.appType = appType;
  containerOptions.allowedDomains = page.allowedDomains;
  containerOptions.allowedAppIds = std::nullopt;  // pages may open any app
  containerOptions.observer = callLog(start, options.quiet);
  containerOptions.developerExtras = options.inspector;
  containerOptions.ownWindow = true;
  if (applied.profile) {
    containerOptions.delegate = applied.profile->hostDelegate();
    if (!options.quiet) applied.profile->onDelegateCall(delegateLog(start));
  }
  return gtk::Container::create(host, std::move(containerOptions));
}

/// Sets `closed` when the user closes the container's window.
void watchWindowClose(gtk::Container& container, bool& closed) {
  g_signal_connect(container.window(), "close-request", G_CALLBACK(+[](GtkWindow*, gpointer flag) -> gboolean {
                     *static_cast<bool*>(flag) = true;
                     return FALSE;
                   }),
                   &closed);
}

int runInteractively(const bool& closed) {
  gtk::HostPlatform::runUntil([&] { return closed; }, std::chrono::hours(24 * 365));
  return 0;
}

/// The self-test: the page reports its outcome in its title. Exit code 0
/// when it reported "done".
int runSelfTest(const RunOptions& options, gtk::Container& container, const bool& closed, Clock::time_point start) {
  const auto timeout =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(options.timeoutSeconds));
  std::string outcome;
  auto finished = [&] {
    for (const auto& title : container.titles()) {
      if (title.rfind(kSelfTestPrefix, 0) == 0) {
        outcome = title.substr(kSelfTestPrefix.size());
        return true;
      }
    }
    return closed;
  };
  const bool ended = gtk::HostPlatform::runUntil(finished, timeout);
  std::optional<std::string> shotError;
  if (!options.screenshot.empty() && container.depth() > 0) {
    shotError = container.saveSnapshot(options.screenshot, std::chrono::seconds(20));
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
  AppliedProfile applied;
  std::unique_ptr<gtk::HostPlatform> host;
  ServedPage page;
  std::unique_ptr<gtk::Container> container;
  std::filesystem::path dataDir;
  try {
    auto profile = readDeviceProfile(options);
    const AppType appType = readAppType(options);
    dataDir = makeDataDirectory(options);
    host = installHostPlatform(options, dataDir, profile, applied);
    page = decideServedPage(options);
    container = makeContainer(options, *host, appType, page, applied, start);
  } catch (const CannotStart& e) {
    std::cerr << "vantu-h5 run: " << e.what() << "\n";
    return 2;
  }

  fmt::print("vantu-h5 run: {} (app {}, data {}, allowed domains: {}{})\n", page.url, page.appId, dataDir.string(),
             fmt::join(page.allowedDomains, ", "),
             applied.profile && applied.profile->hostDelegate()
                 ? ", host delegate \"" + applied.profile->hostDelegate()->name() + "\""
                 : std::string());
  std::fflush(stdout);
  container->open(page.url);
  if (options.inspector) container->showInspector();

  bool closed = false;
  watchWindowClose(*container, closed);
  return options.selfTest ? runSelfTest(options, *container, closed, start) : runInteractively(closed);
}

}  // namespace vantu::cli
