#pragma once
// Runner commands that script the user and the device (a tap on an alert
// button, the keyboard showing), beside the built-in "bridge", "advance"
// and "scenario". A family that needs one adds it to the list in
// runner_commands.cpp.

#include <vector>

#include "platforms/sim/headless_runner.h"

namespace vantu::sim {

std::vector<HeadlessRunner::LineCommand> familyRunnerCommands();

}  // namespace vantu::sim
