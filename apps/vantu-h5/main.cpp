// vantu-h5: run mini-app bridges from the command line.

#include <CLI/CLI.hpp>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include "platforms/sim/headless_runner.h"
#include "vantu/core/version_util.h"
#include "vantu/value/json.h"

namespace {

std::string versionText() {
  return std::string("vantu-h5 ") + VANTU_VERSION + " (bridge SDK " + std::string(vantu::VersionUtil::kSDKVersion) + ")";
}

int runCall(const std::string& scenarioPath, const std::string& dataDir, double settleSeconds) {
  vantu::Value scenario = vantu::Dict{};
  if (!scenarioPath.empty()) {
    std::ifstream file(scenarioPath, std::ios::binary);
    if (!file) {
      std::cerr << "vantu-h5: cannot read scenario " << scenarioPath << "\n";
      return 2;
    }
    std::stringstream text;
    text << file.rdbuf();
    auto parsed = vantu::json::parse(text.str());
    if (!parsed.ok()) {
      std::cerr << "vantu-h5: scenario " << scenarioPath << ": " << parsed.error().message << "\n";
      return 2;
    }
    scenario = std::move(parsed.value());
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

  CLI11_PARSE(app, argc, argv);
  if (call->parsed()) return runCall(scenarioPath, dataDir, settleSeconds);
  return 0;
}
