#pragma once
// Implemented by the host: its own location and reverse-geocoding services.

#include <functional>
#include <optional>

#include "vantu/core/h5_location.h"
#include "vantu/platform/object.h"
#include "vantu/platform/platform_error.h"

namespace vantu {

class H5LocationDataProvider : public virtual Object {
 public:
  using LocationCompletion = std::function<void(bool, std::optional<PlatformError>, std::optional<H5Location>)>;
  using PlacemarkCompletion = std::function<void(bool, std::optional<PlatformError>, std::optional<H5Placemark>)>;

  virtual void fetchLocationWith(LocationCompletion completion) = 0;
  virtual void reverseGeoCodeWith(H5Location h5Location, PlacemarkCompletion completion) = 0;
};

}  // namespace vantu
