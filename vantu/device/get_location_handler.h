#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vantu/core/h5_base_handler.h"
#include "vantu/platform/location_services.h"

namespace vantu {

/// "vantuGetLocation": the last position the location services know, as
/// {"success": true, "data": {"lat": text, "long": text}}. No update is
/// started. Failures are the flat {"error": 2, "message": text}; a refused
/// permission also shows an alert that leads to the settings page.
class GetLocationHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuGetLocation";
  static constexpr std::string_view kNoViewController = "invalid context.currentViewController parameter!";
  static constexpr std::string_view kAccessDisabled = "User has disabled location access!";
  static constexpr std::string_view kNotDetermined = "User has not made a choice!";
  static constexpr std::string_view kNoFix = "Failed to get location from LocationManager!";
  /// A platform without location services.
  static constexpr std::string_view kNoLocationServices = "Location services are not available on this device!";
  static constexpr std::string_view kDisabledAlertTitle = "Location Services disabled";
  static constexpr std::string_view kDisabledAlertMessage = "Please enable Location Services in Settings";
  static constexpr std::string_view kDisabledAlertButton = "OK";

  void handleWith(H5HandlerInputParams params) override;

  /// The shortest decimal text that reads back as the same double
  /// (12.9715987 stays "12.9715987"; a whole number has no fraction).
  static std::string coordinateText(double degrees);

 private:
  LocationManager& locManager();
  static void showDisabledAlert(const std::shared_ptr<ViewController>& viewController);

  std::shared_ptr<LocationManager> locManager_;
};

}  // namespace vantu
