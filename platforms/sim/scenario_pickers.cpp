// The "pickers" section: what the user does in the image pickers and the
// document picker when they appear.

#include <fmt/format.h>

#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_device.h"
#include "platforms/sim/sim_pickers_input.h"

namespace vantu::sim {

std::optional<std::string> loadPickers(SimPickers& pickers, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object with \"photoLibrary\", \"camera\" or \"documents\"");
  // Check everything first, so that a bad entry changes nothing.
  auto photoLibrary = pickers.photoLibrary;
  auto camera = pickers.camera;
  auto documents = pickers.documents;
  for (const auto& [key, field] : *d) {
    const std::string name = key.text();
    std::optional<std::string> error;
    if (name == "photoLibrary") {
      error = readImageChoice(field, true, photoLibrary);
    } else if (name == "camera") {
      error = readImageChoice(field, true, camera);
    } else if (name == "documents") {
      error = readDocumentChoice(field, true, documents);
    } else {
      return fmt::format("unknown field \"{}\"", name);
    }
    if (error) return fmt::format("\"{}\": {}", name, *error);
  }
  pickers.photoLibrary = std::move(photoLibrary);
  pickers.camera = std::move(camera);
  pickers.documents = std::move(documents);
  return std::nullopt;
}

std::optional<std::string> loadPickersSection(SimDevice& device, const Value& value) {
  return loadPickers(device.pickers(), value);
}

}  // namespace vantu::sim
