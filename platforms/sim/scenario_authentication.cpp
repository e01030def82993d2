// The "deviceOwnerAuthentication" section: whether the device can
// authenticate its owner and what the user does in the sheet.

#include <fmt/format.h>

#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_device.h"

namespace vantu::sim {

std::optional<std::string> loadDeviceOwnerAuthenticationSection(SimDevice& device, const Value& value) {
  return loadDeviceOwnerAuthentication(device.deviceOwnerAuthentication(), value);
}

std::optional<std::string> loadDeviceOwnerAuthentication(SimDeviceOwnerAuthentication& service, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object");
  auto policyError = service.policyError;
  auto answer = service.answer;
  for (const auto& [key, field] : *d) {
    const std::string name = key.text();
    if (name == "policyError") {
      if (!field.isNull() && !field.isInt()) return std::string("\"policyError\" must be null or an error code");
      policyError = field.isNull() ? std::nullopt : field.asInt();
    } else if (name == "answer") {
      if (field.isNull()) {
        answer.reset();
      } else {
        AuthenticationAnswer given;
        if (auto error = readAuthenticationAnswer(field, given)) return "\"answer\": " + *error;
        answer = given;
      }
    } else {
      return fmt::format("unknown field \"{}\"", name);
    }
  }
  service.policyError = policyError;
  service.answer = answer;
  return std::nullopt;
}

}  // namespace vantu::sim
