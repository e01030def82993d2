#pragma once
// Location services over the permission store. The app's authorisation is
// the store's location state. A when-in-use request puts the question
// through the authorisation port (one at a time, only while undecided, and
// after the requesting call has returned, as a phone shows its prompt).
// Every live manager is told of each change of the state, whether it came
// from the question or from the settings page. The last fix comes from the
// position source the host gives; without one there is never a fix.

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platforms/linux/permission_store.h"
#include "vantu/platform/location_services.h"

namespace vantu::linux_platform {

class LinuxLocationServices : public LocationServices, public std::enable_shared_from_this<LinuxLocationServices> {
 public:
  using PositionSource = std::function<std::optional<Coordinate>()>;

  static std::shared_ptr<LinuxLocationServices> make(std::shared_ptr<PermissionStore> store,
                                                     std::shared_ptr<Authorization> authorization,
                                                     std::shared_ptr<Dispatch> dispatch, PositionSource position);

  // Used by the managers.
  void requestWhenInUse();
  std::optional<Coordinate> lastFix() const { return position_ ? position_() : std::nullopt; }

 protected:
  AuthorizationState currentAuthorization() const override;
  std::shared_ptr<LocationManager> createManager() override;

 private:
  LinuxLocationServices(std::shared_ptr<PermissionStore> store, std::shared_ptr<Authorization> authorization,
                        std::shared_ptr<Dispatch> dispatch, PositionSource position)
      : store_(std::move(store)),
        authorization_(std::move(authorization)),
        dispatch_(std::move(dispatch)),
        position_(std::move(position)) {}

  void tellManagers(AuthorizationState state);

  std::shared_ptr<PermissionStore> store_;
  std::shared_ptr<Authorization> authorization_;
  std::shared_ptr<Dispatch> dispatch_;
  PositionSource position_;
  std::shared_ptr<void> storeObservation_;
  std::vector<std::weak_ptr<LocationManager>> managers_;
  bool promptShown_ = false;
};

}  // namespace vantu::linux_platform
