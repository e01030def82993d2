#include "platforms/sim/scenario.h"

#include "platforms/sim/sim_device.h"

namespace vantu::sim {

const std::vector<ScenarioSection>& scenarioSections() {
  static const std::vector<ScenarioSection> sections{
      {"app", loadAppSection},
      {"delegates", loadObjectsSection},
      {"environment", loadEnvironmentSection},
      {"device", loadDeviceSection},
      {"permissions", loadPermissionsSection},
      {"location", loadLocationSection},
      {"deviceOwnerAuthentication", loadDeviceOwnerAuthenticationSection},
      {"http", loadHttpSection},
      {"photoLibrary", loadPhotoLibrarySection},
      {"pickers", loadPickersSection},
      {"screens", loadScreensSection},
      {"defaultScreen", loadDefaultScreenSection},
  };
  return sections;
}

std::optional<std::string> applyScenario(SimDevice& device, const Value& scenario) {
  const Dict* root = scenario.asDict();
  if (!root) return std::string("a scenario must be a JSON object");
  const auto& sections = scenarioSections();
  for (const auto& [key, value] : *root) {
    bool known = false;
    for (const auto& section : sections) known = known || (key.string() && *key.string() == section.key);
    if (!known) return "unknown scenario section \"" + key.text() + "\"";
  }
  for (const auto& section : sections) {
    const Value* value = root->find(section.key);
    if (!value) continue;
    if (auto error = section.load(device, *value)) return std::string(section.key) + ": " + *error;
  }
  return std::nullopt;
}

}  // namespace vantu::sim
