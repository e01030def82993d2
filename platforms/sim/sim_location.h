#pragma once
// Location services and the geocoder on the simulated device. The app's
// location authorisation is the "location" resource of the authorisation
// port (on the simulated device SimAuthorization, so the "permissions"
// section and the runner's "answerPrompt" command script it); the when-in-use prompt goes through that resource's prompt
// and its answer is told to every live manager.

#include <memory>
#include <optional>
#include <vector>

#include "platforms/sim/sim_authorization.h"
#include "platforms/sim/sim_ui.h"
#include "vantu/platform/dispatch.h"
#include "vantu/platform/geocoder.h"
#include "platforms/common/prompted_location_services.h"

namespace vantu::sim {

class SimLocationServices : public PromptedLocationServices {
 public:
  SimLocationServices(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<Authorization> authorization)
      : PromptedLocationServices(std::move(dispatch), authorization), authorization_(std::move(authorization)) {}

  /// Off: the app's state reads `denied` and no prompt can be shown.
  bool servicesEnabled = true;
  /// The system's last fix; none before the first one.
  std::optional<Coordinate> lastFix;

  std::optional<Coordinate> currentFix() const override { return lastFix; }

 protected:
  AuthorizationState doAuthorizationState() const override;

 private:
  std::shared_ptr<Authorization> authorization_;
};

/// Answers every reverse geocoding with the scripted placemarks or error,
/// on the main queue, and records a "reverseGeocode" effect.
class SimGeocoder : public Geocoder {
 public:
  SimGeocoder(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<EffectLog> effects)
      : dispatch_(std::move(dispatch)), effects_(std::move(effects)) {}

  std::vector<Placemark> placemarks;
  std::optional<PlatformError> error;

 protected:
  void doReverseGeocode(Coordinate position, Completion completion) override;

 private:
  std::shared_ptr<Dispatch> dispatch_;
  std::shared_ptr<EffectLog> effects_;
};

}  // namespace vantu::sim
