#pragma once
// Location services whose when-in-use question is the authorisation port's
// question for `ProtectedResource::location`, as on a phone: a request shows
// it only while the app is undecided and no question is up, and only after
// the requesting call has returned (so the caller still reads the undecided
// state). The managers it makes read the platform's last fix and are told of
// authorisation changes while they live.

#include <memory>
#include <optional>
#include <vector>

#include "vantu/platform/dispatch.h"
#include "vantu/platform/location_services.h"

namespace vantu {

class PromptedLocationServices : public LocationServices,
                                 public std::enable_shared_from_this<PromptedLocationServices> {
 public:
  PromptedLocationServices(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<Authorization> authorization)
      : dispatch_(std::move(dispatch)), authorization_(std::move(authorization)) {}

  /// What a manager's `requestWhenInUseAuthorization` does.
  void requestWhenInUseAuthorization();
  /// What a manager's `location` reads.
  virtual std::optional<Coordinate> currentFix() const = 0;

 protected:
  std::shared_ptr<LocationManager> doMakeManager() override;
  /// Tells every live manager, in the order they were made.
  void tellManagers(AuthorizationState state);
  /// Called on the main queue with the answer to the question; tells every
  /// manager unless a platform tells them another way.
  virtual void questionAnswered(AuthorizationState state) { tellManagers(state); }

 private:
  std::shared_ptr<Dispatch> dispatch_;
  std::shared_ptr<Authorization> authorization_;
  std::vector<std::weak_ptr<LocationManager>> managers_;
  bool questionUp_ = false;
};

}  // namespace vantu
