#include "platforms/sim/runner_commands.h"

namespace vantu::sim {

std::vector<std::pair<std::string, HeadlessRunner::Command>> familyRunnerCommands() {
  return {};
}

}  // namespace vantu::sim
