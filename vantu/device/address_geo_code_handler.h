#pragma once

#include <memory>
#include <string_view>

#include "vantu/core/h5_base_handler.h"
#include "vantu/core/h5_location.h"
#include "vantu/platform/geocoder.h"

namespace vantu {

/// "vantuGetAddress": the postal address of "latitude", "longitude" (numbers),
/// as {"data": {"locality", "subLocality", "admin", "subAdmin", "postalCode",
/// "countryCode", "countryName", "address"}} (every value text, "" when
/// missing). Bad arguments are the flat {"error": 2, "message": text};
/// geocoding failures are answered inside "data" as {"code", "message"}.
class AddressGeoCodeHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuGetAddress";
  static constexpr std::string_view kNoLatitude = "could not bind latitude parameter!";
  static constexpr std::string_view kNoLongitude = "could not bind longitude parameter!";
  static constexpr std::string_view kNoPlacemarks = "The array of geocoded placemarks was found empty or invalid!";
  /// A platform without a geocoder (answered like a geocoder error).
  static constexpr std::string_view kNoGeocoder = "Reverse geocoding is not available on this device!";
  static constexpr std::int64_t kGeocoderErrorCode = 2;
  static constexpr std::int64_t kNoPlacemarksCode = 1;

  void handleWith(H5HandlerInputParams params) override;

  static H5Placemark h5Placemark(const Placemark& placemark);
  /// The success payload for `placemark`; "address" joins the parts that
  /// are present (street, number, sub-locality, locality, postal code,
  /// area, country) with ", ".
  static Dict addressPayload(const H5Placemark& placemark);

 private:
  std::shared_ptr<Geocoder> geocoder_;
};

}  // namespace vantu
