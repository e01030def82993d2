#pragma once
// The runner command "keyboard": the on-screen keyboard is about to appear
// or disappear (docs/runner-protocol.md).

#include <optional>
#include <string>

#include "platforms/sim/headless_runner.h"

namespace vantu::sim {

/// {"keyboard": "show" | "hide", "scrollTo": {"view": NAME, "offset": [x, y]}}.
/// On the main queue the matching keyboard notification is posted; then
/// "scrollTo" moves the named scroll view's content offset (animated),
/// standing for the platform's own scroll of the focused field into view,
/// which follows the announcement.
std::optional<std::string> keyboardCommand(HeadlessRunner& runner, const Dict& line, Dict& out);

}  // namespace vantu::sim
