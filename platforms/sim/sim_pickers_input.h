#pragma once
// Reading the user's picker choices from JSON, shared by the "pickers"
// scenario section and the runner's picker commands.

#include <optional>
#include <string>

#include "platforms/sim/sim_pickers.h"
#include "vantu/value/value.h"

namespace vantu::sim {

/// "cancel", "hold" (when `allowHold`), a file name, or {"file": NAME,
/// "url": URL or null}.
std::optional<std::string> readImageChoice(const Value& value, bool allowHold, SimPickers::ImageChoice& out);
/// "cancel", "hold" (when `allowHold`), or a list of file names.
std::optional<std::string> readDocumentChoice(const Value& value, bool allowHold, SimPickers::DocumentChoice& out);

}  // namespace vantu::sim
