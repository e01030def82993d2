#pragma once
// Geocoding port: the postal address parts of a position.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vantu/platform/location_services.h"
#include "vantu/platform/platform_error.h"

namespace vantu {

/// One address the geocoder found; every part may be missing.
struct Placemark {
  std::optional<std::string> locality;
  std::optional<std::string> subLocality;
  std::optional<std::string> administrativeArea;
  std::optional<std::string> subAdministrativeArea;
  std::optional<std::string> postalCode;
  std::optional<std::string> isoCountryCode;
  std::optional<std::string> country;
  std::optional<std::string> thoroughfare;
  std::optional<std::string> subThoroughfare;
  bool operator==(const Placemark&) const = default;
};

class Geocoder {
 public:
  /// The placemarks found (best first; possibly none) or the error.
  using Completion = std::function<void(std::vector<Placemark>, std::optional<PlatformError>)>;

  virtual ~Geocoder() = default;

  /// Calls `completion` once, on the main thread.
  void reverseGeocode(Coordinate position, Completion completion) {
    doReverseGeocode(position, std::move(completion));
  }

 protected:
  virtual void doReverseGeocode(Coordinate position, Completion completion) = 0;
};

}  // namespace vantu
