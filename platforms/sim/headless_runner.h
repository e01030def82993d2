#pragma once
// The headless bridge runner: JSON lines in, one JSON line out per input
// line (docs/runner-protocol.md). Calls run on the simulated device until
// its loop is idle; every answer, host delegate call, printed line and UI
// effect that happened meanwhile is reported.

#include <chrono>
#include <functional>
#include <iosfwd>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/value/value.h"

#include "platforms/sim/sim_device.h"
#include "vantu/runtime/bridge_registry.h"

namespace vantu::sim {

struct RunnerOptions {
  /// Wall-clock bound for real I/O that a call started.
  std::chrono::milliseconds settleTimeout{30000};
};

class HeadlessRunner {
 public:
  /// A command: handles one input line whose object has the command's key,
  /// filling `out`; returns the reason when the line is bad.
  using Command = std::function<std::optional<std::string>(HeadlessRunner&, const Dict& line, Dict& out)>;
  /// A command with the key that selects it and an example line (for help texts).
  struct LineCommand {
    std::string key;
    std::string example;
    Command handle;
  };

  /// Every command a line may hold, in the order they are looked for.
  static std::vector<LineCommand> lineCommands();

  HeadlessRunner(SimDevice& device, RunnerOptions options = {});

  /// Handles one input line; nullopt for a blank line (no output).
  std::optional<std::string> processLine(std::string_view line);
  /// Handles every line of `in`, writing one line to `out` for each.
  void run(std::istream& in, std::ostream& out);

  SimDevice& device() { return device_; }
  BridgeRegistry& registry() { return registry_; }
  /// Adds a command keyed by `key` (families that script user actions).
  void addCommand(std::string key, Command command);

  /// Runs the loop until idle; false if real I/O did not come back in time.
  bool settle();

 private:
  std::optional<std::string> call(const Dict& line, Dict& out);
  std::optional<std::string> listen(const Dict& line, Dict& out, bool on);
  void report(Dict& out);

  SimDevice& device_;
  RunnerOptions options_;
  BridgeRegistry registry_;
  std::vector<std::pair<std::string, Command>> commands_;
  std::size_t lineNumber_ = 0;

  std::mutex inboxMutex_;
  std::vector<std::pair<std::size_t, Value>> inbox_;  // (call line, answer)
  Array events_;  // events and progress reports of the current line, in order
  std::vector<std::string> listening_;  // event names reported, as a page's listeners
  std::shared_ptr<void> eventSubscription_;
};

}  // namespace vantu::sim
