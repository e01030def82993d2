#pragma once
// Location records exchanged with the host's location data provider.

#include <optional>
#include <string>

namespace vantu {

struct H5Location {
  double latitude = 0;   // degrees
  double longitude = 0;  // degrees
  bool operator==(const H5Location&) const = default;
};

struct H5Placemark {
  std::optional<std::string> locality;
  std::optional<std::string> subLocality;
  std::optional<std::string> administrativeArea;
  std::optional<std::string> subAdministrativeArea;
  std::optional<std::string> postalCode;
  std::optional<std::string> countryCode;
  std::optional<std::string> countryName;
  std::optional<std::string> thoroughfare;
  std::optional<std::string> subThoroughfare;
  bool operator==(const H5Placemark&) const = default;
};

}  // namespace vantu
