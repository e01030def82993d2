#pragma once
// Location services over the permission store. The app's authorisation is
// the store's location state; the when-in-use question goes through the
// authorisation port (see PromptedLocationServices). Every live manager is
// told of each change of the state, whether it came from the question or
// from the settings page. The last fix comes from the position source the
// host gives; without one there is never a fix.

#include <functional>
#include <memory>
#include <optional>

#include "platforms/linux/permission_store.h"
#include "platforms/common/prompted_location_services.h"

namespace vantu::linux_platform {

class LinuxLocationServices : public PromptedLocationServices {
 public:
  using PositionSource = std::function<std::optional<Coordinate>()>;

  static std::shared_ptr<LinuxLocationServices> make(std::shared_ptr<PermissionStore> store,
                                                     std::shared_ptr<Authorization> authorization,
                                                     std::shared_ptr<Dispatch> dispatch, PositionSource position);

  std::optional<Coordinate> currentFix() const override { return position_ ? position_() : std::nullopt; }

 protected:
  AuthorizationState doAuthorizationState() const override;
  void questionAnswered(AuthorizationState state) override;

 private:
  LinuxLocationServices(std::shared_ptr<PermissionStore> store, std::shared_ptr<Authorization> authorization,
                        std::shared_ptr<Dispatch> dispatch, PositionSource position)
      : PromptedLocationServices(std::move(dispatch), std::move(authorization)),
        store_(std::move(store)),
        position_(std::move(position)) {}

  std::shared_ptr<PermissionStore> store_;
  PositionSource position_;
  std::shared_ptr<void> storeObservation_;
};

}  // namespace vantu::linux_platform
