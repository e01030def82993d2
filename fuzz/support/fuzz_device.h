#pragma once
// The simulated device the fuzz targets run calls on: the screens, host
// delegates and providers a host sets up, permission states, a position,
// scripted pickers with real files, installed whitelists, and HTTP kept on
// the loopback network (loopback_http.h).

#include <memory>
#include <string_view>

#include "fuzz/support/finding.h"
#include "platforms/sim/sim_device.h"
#include "vantu/value/value.h"

namespace vantu::fuzzing {

/// The state of the device's capabilities, chosen per input.
enum class DeviceState {
  granted,    // every permission given, a position, owner authentication succeeds, pickers pick
  denied,     // permissions denied or restricted, no position, no passcode, pickers cancel
  undecided,  // prompts that the user answers at once; authentication cancelled; odd files picked
  held,       // prompts, sheets and pickers that stay up
};

/// The state named `name` ("granted", "denied", "undecided", "held");
/// `granted` for any other text.
DeviceState deviceStateNamed(std::string_view name);

/// The scenario of a device in `state` (docs/scenario.md). Screens: "nav"
/// (a navigation controller) holding "shop" (a mini-app with a web view, a
/// partial delegate and a keyboard-offset fixer) and its child
/// "shop.detail"; "plain" (an object that is no delegate); "tabs" holding
/// "tab.one" (the full host delegate). "shop" is the default screen.
const Value& referenceScenario(DeviceState state);

/// A fresh device with `scenario` applied, installed as the process's
/// platform, its whitelists set up and its HTTP on loopback. Stops the
/// process when the scenario is refused (a broken target, not a finding).
std::unique_ptr<sim::SimDevice> makeDevice(const Value& scenario);

/// A fresh device without any scenario, installed, HTTP on loopback.
std::unique_ptr<sim::SimDevice> makeBareDevice();

/// Runs the device's loop until nothing is left to do: due tasks, real I/O
/// (up to a generous bound) and, moving virtual time forward, timers.
/// False when real I/O did not come back in time.
bool runUntilIdle(sim::SimDevice& device);

/// Stops the process when `answer` cannot reach a page: its JSON text
/// must read back.
void requireDeliverable(const Value& answer);

}  // namespace vantu::fuzzing
