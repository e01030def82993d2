#pragma once
// The runner commands that answer a picker left up by the scenario
// (docs/runner-protocol.md): the user picks an image or documents, or
// cancels.

#include <optional>
#include <string>

#include "platforms/sim/headless_runner.h"

namespace vantu::sim {

/// {"pickImage": FILE | {"file": FILE, "url": URL or null} | "cancel"}: the
/// user chooses that image in the image picker that is shown (or cancels).
std::optional<std::string> pickImageCommand(HeadlessRunner& runner, const Dict& line, Dict& out);
/// {"pickDocuments": [FILE, ...] | "cancel"}: the user chooses those files
/// in the document picker that is shown (or cancels).
std::optional<std::string> pickDocumentsCommand(HeadlessRunner& runner, const Dict& line, Dict& out);
/// {"cancelPicker": {}}: the user cancels the one picker that is shown.
std::optional<std::string> cancelPickerCommand(HeadlessRunner& runner, const Dict& line, Dict& out);

}  // namespace vantu::sim
