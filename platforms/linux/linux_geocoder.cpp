#include "platforms/linux/linux_geocoder.h"

namespace vantu::linux_platform {

void LinuxGeocoder::doReverseGeocode(Coordinate, Completion completion) {
  dispatch_->main()->async([completion = std::move(completion)] {
    completion({}, PlatformError{kErrorDomain, kGeocodingUnavailable, kUnavailableDescription, std::nullopt, {}});
  });
}

}  // namespace vantu::linux_platform
