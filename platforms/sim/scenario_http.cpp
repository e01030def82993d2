// The "http" section (when a transfer's measurements arrive) and the
// "photoLibrary" section (whether saving pictures fails).

#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_device.h"

namespace vantu::sim {

std::optional<std::string> loadHttpSection(SimDevice& device, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object");
  for (const auto& [key, field] : *d) {
    if (key.text() != "metricsOrder") return "unknown field \"" + key.text() + "\"";
    const std::string* order = field.asString();
    if (order && *order == "beforeCompletion") {
      device.transport().setMetricsOrder(curl::MetricsOrder::beforeCompletion);
    } else if (order && *order == "afterCompletion") {
      device.transport().setMetricsOrder(curl::MetricsOrder::afterCompletion);
    } else {
      return std::string("\"metricsOrder\" must be \"beforeCompletion\" or \"afterCompletion\"");
    }
  }
  return std::nullopt;
}

std::optional<std::string> loadPhotoLibrarySection(SimDevice& device, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object");
  for (const auto& [key, field] : *d) {
    if (key.text() != "failSaves") return "unknown field \"" + key.text() + "\"";
    if (!field.isBool()) return std::string("\"failSaves\" must be true or false");
    device.photoLibrary().failSaves = *field.asBool();
  }
  return std::nullopt;
}

}  // namespace vantu::sim
