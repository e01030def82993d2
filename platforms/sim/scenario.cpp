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

std::optional<std::string> unknownScenarioSection(const Value& scenario) {
  const Dict* root = scenario.asDict();
  if (!root) return std::nullopt;
  const auto& sections = scenarioSections();
  for (const auto& [key, value] : *root) {
    bool known = false;
    for (const auto& section : sections) known = known || (key.string() && *key.string() == section.key);
    if (!known) return key.text();
  }
  return std::nullopt;
}

std::string scenarioSectionNames() {
  const auto& sections = scenarioSections();
  std::string names;
  for (std::size_t i = 0; i < sections.size(); ++i) {
    if (i > 0) names += i + 1 == sections.size() ? " and " : ", ";
    names += '"';
    names += sections[i].key;
    names += '"';
  }
  return names;
}

std::optional<std::string> applyScenario(SimDevice& device, const Value& scenario) {
  const Dict* root = scenario.asDict();
  if (!root) return std::string("a scenario must be a JSON object");
  if (auto unknown = unknownScenarioSection(scenario)) return "unknown scenario section \"" + *unknown + "\"";
  const auto& sections = scenarioSections();
  for (const auto& section : sections) {
    const Value* value = root->find(section.key);
    if (!value) continue;
    if (auto error = section.load(device, *value)) return std::string(section.key) + ": " + *error;
  }
  return std::nullopt;
}

}  // namespace vantu::sim
