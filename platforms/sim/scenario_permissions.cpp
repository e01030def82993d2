// The "permissions" section: the authorisation state of each protected
// resource and the user's answer to its prompt.

#include <fmt/format.h>

#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_authorization.h"
#include "platforms/sim/sim_device.h"

namespace vantu::sim {
namespace {

using Error = std::optional<std::string>;

Error readState(const Value& v, std::string_view field, AuthorizationState& out) {
  const std::string* name = v.asString();
  auto state = name ? authorizationStateNamed(*name) : std::nullopt;
  if (!state) return fmt::format("\"{}\" must be an authorisation state name", field);
  out = *state;
  return std::nullopt;
}

Error readResource(const std::string& name, const Value& v, SimAuthorization::Resource& out) {
  if (v.isString()) return readState(v, name, out.state);
  const Dict* d = v.asDict();
  if (!d) return fmt::format("\"{}\" must be a state name or an object", name);
  for (const auto& [key, field] : *d) {
    const std::string text = key.text();
    if (text == "state") {
      if (auto error = readState(field, name + ".state", out.state)) return error;
    } else if (text == "answer") {
      if (field.isNull()) {
        out.answer.reset();
      } else {
        AuthorizationState answer{};
        if (auto error = readState(field, name + ".answer", answer)) return error;
        out.answer = answer;
      }
    } else {
      return fmt::format("unknown field \"{}.{}\"", name, text);
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> loadPermissionsSection(SimDevice& device, const Value& value) {
  return loadPermissions(device.authorization(), value);
}

std::optional<std::string> loadPermissions(SimAuthorization& authorization, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object keyed by resource name");
  // Check everything first, so that a bad entry changes nothing.
  std::vector<std::pair<ProtectedResource, SimAuthorization::Resource>> changes;
  for (const auto& [key, field] : *d) {
    const std::string name = key.text();
    auto resource = protectedResourceNamed(name);
    if (!resource) return fmt::format("unknown resource \"{}\"", name);
    SimAuthorization::Resource res = authorization.resource(*resource);
    if (auto error = readResource(name, field, res)) return error;
    changes.emplace_back(*resource, res);
  }
  for (auto& [resource, res] : changes) authorization.resource(resource) = res;
  return std::nullopt;
}

}  // namespace vantu::sim
