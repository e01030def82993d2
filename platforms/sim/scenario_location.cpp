// The "location" section: location services, the last fix and what the
// geocoder answers.

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_device.h"

namespace vantu::sim {
namespace {

using Error = std::optional<std::string>;

constexpr std::array<std::pair<std::string_view, std::optional<std::string> Placemark::*>, 9> kPlacemarkFields{{
    {"locality", &Placemark::locality},
    {"subLocality", &Placemark::subLocality},
    {"administrativeArea", &Placemark::administrativeArea},
    {"subAdministrativeArea", &Placemark::subAdministrativeArea},
    {"postalCode", &Placemark::postalCode},
    {"isoCountryCode", &Placemark::isoCountryCode},
    {"country", &Placemark::country},
    {"thoroughfare", &Placemark::thoroughfare},
    {"subThoroughfare", &Placemark::subThoroughfare},
}};

Error readFix(const Value& v, std::optional<Coordinate>& out) {
  if (v.isNull()) {
    out.reset();
    return std::nullopt;
  }
  const Dict* d = v.asDict();
  auto latitude = d ? d->getNumber("latitude") : std::nullopt;
  auto longitude = d ? d->getNumber("longitude") : std::nullopt;
  if (!latitude || !longitude || d->size() != 2)
    return std::string("\"lastFix\" must be null or {\"latitude\": number, \"longitude\": number}");
  out = Coordinate{*latitude, *longitude};
  return std::nullopt;
}

Error readPlacemark(const Value& v, Placemark& out) {
  const Dict* d = v.asDict();
  if (!d) return std::string("a placemark must be an object");
  for (const auto& [key, field] : *d) {
    const std::string name = key.text();
    auto it = std::find_if(kPlacemarkFields.begin(), kPlacemarkFields.end(),
                           [&](const auto& entry) { return entry.first == name; });
    if (it == kPlacemarkFields.end()) return fmt::format("unknown placemark field \"{}\"", name);
    if (!field.isNull() && !field.isString()) return fmt::format("placemark field \"{}\" must be text or null", name);
    out.*(it->second) = field.isNull() ? std::nullopt : std::optional<std::string>(*field.asString());
  }
  return std::nullopt;
}

Error readGeocodeError(const Value& v, std::optional<PlatformError>& out) {
  if (v.isNull()) {
    out.reset();
    return std::nullopt;
  }
  const Dict* d = v.asDict();
  auto message = d ? d->getString("message") : std::nullopt;
  const Value* code = d ? d->find("code") : nullptr;
  const Value* domain = d ? d->find("domain") : nullptr;
  if (!message || (code && !code->isInt()) || (domain && !domain->isString()))
    return std::string("\"geocoder.error\" must be null or {\"message\": text, \"code\": integer, \"domain\": text}");
  out = PlatformError{d->getString("domain").value_or("sim.geocoder"), d->getInt("code").value_or(2),
                      std::move(*message), std::nullopt, {}};
  return std::nullopt;
}

Error readGeocoder(const Value& v, std::vector<Placemark>& placemarks, std::optional<PlatformError>& error) {
  const Dict* d = v.asDict();
  if (!d) return std::string("\"geocoder\" must be an object");
  for (const auto& [key, field] : *d) {
    const std::string name = key.text();
    if (name == "placemarks") {
      const Array* list = field.asArray();
      if (!list) return std::string("\"geocoder.placemarks\" must be a list");
      placemarks.clear();
      for (const Value& item : *list) {
        if (auto e = readPlacemark(item, placemarks.emplace_back())) return e;
      }
    } else if (name == "error") {
      if (auto e = readGeocodeError(field, error)) return e;
    } else {
      return fmt::format("unknown field \"geocoder.{}\"", name);
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> loadLocationSection(SimDevice& device, const Value& value) {
  return loadLocation(device.locationServices(), device.geocoder(), value);
}

std::optional<std::string> loadLocation(SimLocationServices& services, SimGeocoder& geocoder, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object");
  // Read into copies first, so that a bad field changes nothing.
  bool enabled = services.servicesEnabled;
  std::optional<Coordinate> fix = services.lastFix;
  std::vector<Placemark> placemarks = geocoder.placemarks;
  std::optional<PlatformError> error = geocoder.error;
  for (const auto& [key, field] : *d) {
    const std::string name = key.text();
    if (name == "servicesEnabled") {
      if (!field.isBool()) return std::string("\"servicesEnabled\" must be true or false");
      enabled = *field.asBool();
    } else if (name == "lastFix") {
      if (auto e = readFix(field, fix)) return e;
    } else if (name == "geocoder") {
      if (auto e = readGeocoder(field, placemarks, error)) return e;
    } else {
      return fmt::format("unknown field \"{}\"", name);
    }
  }
  services.servicesEnabled = enabled;
  services.lastFix = fix;
  geocoder.placemarks = std::move(placemarks);
  geocoder.error = std::move(error);
  return std::nullopt;
}

}  // namespace vantu::sim
