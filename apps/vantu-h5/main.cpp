// vantu-h5: run mini-app bridges from the command line.

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "platforms/sim/headless_runner.h"
#include "platforms/sim/scenario.h"
#ifdef VANTU_HAVE_GTK
#include "apps/vantu-h5/run_command.h"
#endif
#include "vantu/core/version_util.h"
#include "vantu/version.h"
#include "vantu/value/json.h"

namespace {

// The line commands, one per line with an example, for `call --help`.
std::string lineCommandsHelp() {
  std::string help = "\nEach input line is one JSON object holding one of these commands (docs/runner-protocol.md):\n";
  for (const auto& command : vantu::sim::HeadlessRunner::lineCommands()) {
    help += "  " + command.key + std::string(command.key.size() < 22 ? 22 - command.key.size() : 1, ' ') +
            command.example + "\n";
  }
  return help;
}

std::string versionText() {
  return std::string("vantu-h5 ") + std::string(vantu::libraryVersion()) + " (bridge SDK " +
         std::string(vantu::VersionUtil::kSDKVersion) + ")";
}

int runCall(const std::string& scenarioPath, const std::string& dataDir, double settleSeconds) {
  vantu::Value scenario = vantu::Dict{};
  if (!scenarioPath.empty()) {
    auto parsed = vantu::json::parseFile(scenarioPath);
    if (!parsed) {
      std::cerr << "vantu-h5: cannot read scenario " << scenarioPath << "\n";
      return 2;
    }
    if (!parsed->ok()) {
      std::cerr << "vantu-h5: scenario " << scenarioPath << ": " << parsed->error().message << "\n";
      return 2;
    }
    scenario = std::move(parsed->value());
    // A file is written by hand: name every section it may hold.
    if (auto unknown = vantu::sim::unknownScenarioSection(scenario)) {
      std::cerr << "vantu-h5: scenario " << scenarioPath << ": unknown scenario section \"" << *unknown
                << "\" (a scenario holds " << vantu::sim::scenarioSectionNames() << ")\n";
      return 2;
    }
  }
  if (!dataDir.empty()) {
    std::error_code ec;
    std::filesystem::create_directories(dataDir, ec);
    if (ec) {
      std::cerr << "vantu-h5: cannot create data directory " << dataDir << ": " << ec.message() << "\n";
      return 2;
    }
  }

  // Without --data-dir the device keeps its data in a fresh temporary
  // directory that it removes when the command ends.
  auto devicePtr = dataDir.empty() ? std::make_unique<vantu::sim::SimDevice>()
                                   : std::make_unique<vantu::sim::SimDevice>(std::filesystem::path(dataDir));
  auto& device = *devicePtr;
  device.install();
  // Files the scenario names (picked images and documents) are relative to it.
  if (!scenarioPath.empty()) device.pickers().baseDirectory = std::filesystem::absolute(scenarioPath).parent_path();
  if (auto error = device.apply(scenario)) {
    std::cerr << "vantu-h5: scenario " << scenarioPath << ": " << *error << "\n";
    return 2;
  }
  vantu::sim::RunnerOptions options;
  options.settleTimeout = std::chrono::milliseconds(static_cast<long long>(settleSeconds * 1000));
  vantu::sim::HeadlessRunner runner(device, options);
  runner.run(std::cin, std::cout);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"vantu-h5: run HTML5 mini-app bridges"};
  app.set_version_flag("--version", versionText());
  app.require_subcommand(1);

  auto* call = app.add_subcommand(
      "call", "Headless bridge runner: JSON lines on stdin, one JSON line per input line on stdout");
  std::string scenarioPath;
  std::string dataDir;
  double settleSeconds = 30;
  call->add_option("--scenario", scenarioPath, "Scenario file describing the simulated device")->check(CLI::ExistingFile);
  call->add_option("--data-dir", dataDir, "Directory for persisted data (created if missing)");
  call->add_option("--settle-timeout", settleSeconds, "Seconds to wait for real I/O a call started")
      ->check(CLI::Range(0.0, 3600.0));
  call->footer(lineCommandsHelp());

#ifdef VANTU_HAVE_GTK
  vantu::cli::RunOptions run;
  auto* runCommand = app.add_subcommand("run", "Open a mini-app directory (served on 127.0.0.1) or a URL in the container");
  runCommand->add_option("target", run.target, "Mini-app directory or URL")->required();
  runCommand->add_option("--page", run.page, "Page of the directory to open first")->capture_default_str();
  runCommand->add_option("--app-id", run.appId, "Unique app id of the screens (default: the directory name or the URL)");
  runCommand->add_option("--app-type", run.appType, "miniapp or generic")->capture_default_str();
  runCommand->add_option("--data-dir", run.dataDir, "Directory for persisted data (default: $XDG_DATA_HOME/vantu-h5)");
  runCommand->add_option("--allow-domain", run.allowDomains, "Web domain whose pages may call bridges (repeatable)");
  runCommand->add_option("--device-profile", run.deviceProfile, "JSON file with the device's \"permissions\", \"location\", \"deviceOwnerAuthentication\" and \"pickers\"")
      ->check(CLI::ExistingFile);
  runCommand->add_option("--camera-source", run.cameraSource,
                         "GStreamer pipeline description used as the camera (e.g. \"videotestsrc\")");
  runCommand->add_flag("--self-test", run.selfTest, "Open the page with ?selftest=1 and wait for its verdict in the title");
  runCommand->add_option("--screenshot", run.screenshot, "With --self-test: write the final page as PNG");
  runCommand->add_option("--timeout", run.timeoutSeconds, "With --self-test: seconds to wait for the verdict")
      ->check(CLI::Range(1.0, 3600.0))
      ->capture_default_str();
  runCommand->add_flag("--inspector", run.inspector, "Enable and open WebKit's inspector");
  runCommand->add_flag("--quiet", run.quiet, "Do not print the bridge-call log");
#endif

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // Help and version end with 0; every refused option or file, including a
    // missing scenario or device profile, with 2.
    return app.exit(e) == 0 ? 0 : 2;
  }
  if (call->parsed()) return runCall(scenarioPath, dataDir, settleSeconds);
#ifdef VANTU_HAVE_GTK
  if (runCommand->parsed()) return vantu::cli::runContainer(run);
#endif
  return 0;
}
