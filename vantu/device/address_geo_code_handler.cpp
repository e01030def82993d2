#include "vantu/device/address_geo_code_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/platform/platform.h"

namespace vantu {
namespace {

Dict geocodeFailure(std::int64_t code, std::string_view message) {
  return Dict{{"data", Dict{{"code", code}, {"message", message}}}};
}

}  // namespace

H5Placemark AddressGeoCodeHandler::h5Placemark(const Placemark& p) {
  return H5Placemark{p.locality,       p.subLocality,    p.administrativeArea,
                     p.subAdministrativeArea, p.postalCode, p.isoCountryCode,
                     p.country,        p.thoroughfare,   p.subThoroughfare};
}

Dict AddressGeoCodeHandler::addressPayload(const H5Placemark& p) {
  std::string address;
  for (const auto* part : {&p.thoroughfare, &p.subThoroughfare, &p.subLocality, &p.locality, &p.postalCode,
                           &p.administrativeArea, &p.countryName}) {
    if (!*part) continue;
    if (!address.empty()) address += ", ";
    address += **part;
  }
  return Dict{{"data", Dict{{"locality", p.locality.value_or("")},
                            {"subLocality", p.subLocality.value_or("")},
                            {"admin", p.administrativeArea.value_or("")},
                            {"subAdmin", p.subAdministrativeArea.value_or("")},
                            {"postalCode", p.postalCode.value_or("")},
                            {"countryCode", p.countryCode.value_or("")},
                            {"countryName", p.countryName.value_or("")},
                            {"address", std::move(address)}}}};
}

void AddressGeoCodeHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto latitude = params.data.getNumber("latitude");
  if (!latitude) return answerFailure(params.callback, kNoLatitude);
  auto longitude = params.data.getNumber("longitude");
  if (!longitude) return answerFailure(params.callback, kNoLongitude);
  if (!geocoder_) geocoder_ = platform().geocoder;
  if (!geocoder_) return params.callback(geocodeFailure(kGeocoderErrorCode, kNoGeocoder));

  geocoder_->reverseGeocode(
      Coordinate{*latitude, *longitude},
      [weak = weakSelf(this), callback = std::move(params.callback)](std::vector<Placemark> placemarks,
                                                                     std::optional<PlatformError> error) {
        if (!weak.lock()) return;
        if (error) return callback(geocodeFailure(kGeocoderErrorCode, error->localizedDescription));
        if (placemarks.empty()) return callback(geocodeFailure(kNoPlacemarksCode, kNoPlacemarks));
        callback(addressPayload(h5Placemark(placemarks.front())));
      });
}

}  // namespace vantu
