// The "device" section: the phone's model, system version and language, and
// its network (reachability flags and cellular radio technology).

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>

#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_device.h"

namespace vantu::sim {
namespace {

using Error = std::optional<std::string>;

namespace rf = reachability_flag;

constexpr std::pair<std::string_view, ReachabilityFlags> kFlagNames[] = {
    {"transientConnection", rf::kTransientConnection},
    {"reachable", rf::kReachable},
    {"connectionRequired", rf::kConnectionRequired},
    {"connectionOnTraffic", rf::kConnectionOnTraffic},
    {"interventionRequired", rf::kInterventionRequired},
    {"connectionOnDemand", rf::kConnectionOnDemand},
    {"isLocalAddress", rf::kIsLocalAddress},
    {"isDirect", rf::kIsDirect},
    {"isWWAN", rf::kIsWWAN},
};

Error unknownField(const Key& key) { return "unknown field \"" + key.text() + "\""; }

Error readText(const Value& v, std::string_view field, std::string& out) {
  const std::string* text = v.asString();
  if (!text) return fmt::format("\"{}\" must be a string", field);
  out = *text;
  return std::nullopt;
}

Error readOptionalText(const Value& v, std::string_view field, std::optional<std::string>& out) {
  if (v.isNull()) {
    out.reset();
    return std::nullopt;
  }
  const std::string* text = v.asString();
  if (!text) return fmt::format("\"{}\" must be a string or null", field);
  out = *text;
  return std::nullopt;
}

Error readFlags(const Value& v, ReachabilityFlags& out) {
  if (auto n = v.asInt()) {
    if (*n < 0 || *n > 0xffffffffLL) return std::string("\"network.flags\" must fit in 32 bits");
    out = static_cast<ReachabilityFlags>(*n);
    return std::nullopt;
  }
  const Array* names = v.asArray();
  if (!names) return std::string("\"network.flags\" must be an integer or a list of flag names");
  ReachabilityFlags flags = 0;
  for (const Value& item : *names) {
    const std::string* name = item.asString();
    if (!name) return std::string("\"network.flags\" must list flag names");
    bool known = false;
    for (const auto& [flagName, bit] : kFlagNames) {
      if (*name == flagName) {
        flags |= bit;
        known = true;
      }
    }
    if (!known) return fmt::format("unknown reachability flag \"{}\"", *name);
  }
  out = flags;
  return std::nullopt;
}

}  // namespace

Error loadNetwork(SimReachability& reachability, std::optional<std::string>& radioTechnology, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("\"network\" must be an object");
  // Check everything first, so that a bad field changes nothing.
  std::optional<ReachabilityFlags> flags;
  std::optional<std::optional<std::string>> technology;
  std::optional<bool> unavailable;
  for (const auto& [key, v] : *d) {
    if (key.text() == "flags") {
      ReachabilityFlags f = 0;
      if (auto e = readFlags(v, f)) return e;
      flags = f;
    } else if (key.text() == "radioAccessTechnology") {
      std::optional<std::string> t;
      if (auto e = readOptionalText(v, "network.radioAccessTechnology", t)) return e;
      technology = t;
    } else if (key.text() == "reachabilityUnavailable") {
      if (!v.isBool()) return std::string("\"network.reachabilityUnavailable\" must be a boolean");
      unavailable = *v.asBool();
    } else {
      return "network: " + *unknownField(key);
    }
  }
  if (technology) radioTechnology = *technology;
  if (unavailable) reachability.unavailable = *unavailable;
  // Last: running monitors hear of the change with the rest already in place.
  if (flags) reachability.setFlags(*flags);
  return std::nullopt;
}

namespace {

Error readImagePickerSources(const Value& value, std::set<ImagePickerSource>& out) {
  static constexpr std::pair<std::string_view, ImagePickerSource> kSourceNames[] = {
      {"photoLibrary", ImagePickerSource::photoLibrary},
      {"camera", ImagePickerSource::camera},
      {"savedPhotosAlbum", ImagePickerSource::savedPhotosAlbum},
  };
  const Array* names = value.asArray();
  if (!names) return std::string("\"imagePickerSources\" must be a list of source names");
  std::set<ImagePickerSource> sources;
  for (const Value& item : *names) {
    const std::string* name = item.asString();
    const auto* found = std::find_if(std::begin(kSourceNames), std::end(kSourceNames),
                                     [&](const auto& entry) { return name && *name == entry.first; });
    if (found == std::end(kSourceNames)) return std::string("\"imagePickerSources\" must list source names");
    sources.insert(found->second);
  }
  out = std::move(sources);
  return std::nullopt;
}

}  // namespace

Error loadDeviceSection(SimDevice& device, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object");
  for (const auto& [key, v] : *d) {
    auto field = key.text();
    if (field != "model" && field != "systemVersion" && field != "locale" && field != "network" &&
        field != "imagePickerSources")
      return unknownField(key);
  }
  if (const Value* v = d->find("imagePickerSources")) {
    if (auto e = readImagePickerSources(*v, device.application().imagePickerSources)) return e;
  }
  auto& facts = device.facts();
  if (const Value* v = d->find("model")) {
    if (auto e = readText(*v, "model", facts.model)) return e;
  }
  if (const Value* v = d->find("systemVersion")) {
    if (auto e = readText(*v, "systemVersion", facts.osVersionText)) return e;
  }
  if (const Value* v = d->find("locale")) {
    if (auto e = readOptionalText(*v, "locale", facts.language)) return e;
  }
  if (const Value* v = d->find("network")) return loadNetwork(device.reachability(), facts.radioTechnology, *v);
  return std::nullopt;
}

}  // namespace vantu::sim
