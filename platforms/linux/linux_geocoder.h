#pragma once
// Reverse geocoding on Linux. Debian has no offline data that turns a
// coordinate into street-level address parts (the packaged geocoders ask
// online services; the packaged place-name lists hold cities only), and the
// library makes no network requests of its own accord, so every request
// fails with `kGeocodingUnavailable`, answered on the main queue as any
// geocoder error is.

#include <memory>

#include "vantu/platform/dispatch.h"
#include "vantu/platform/geocoder.h"

namespace vantu::linux_platform {

class LinuxGeocoder : public Geocoder {
 public:
  static constexpr const char* kErrorDomain = "vantu.LinuxGeocoder";
  static constexpr std::int64_t kGeocodingUnavailable = 2;
  static constexpr const char* kUnavailableDescription =
      "Reverse geocoding is not available: this system has no address data for coordinates.";

  explicit LinuxGeocoder(std::shared_ptr<Dispatch> dispatch) : dispatch_(std::move(dispatch)) {}

 protected:
  void doReverseGeocode(Coordinate position, Completion completion) override;

 private:
  std::shared_ptr<Dispatch> dispatch_;
};

}  // namespace vantu::linux_platform
