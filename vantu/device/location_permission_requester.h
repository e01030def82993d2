#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "vantu/platform/location_services.h"

namespace vantu {

/// Turns the location manager's authorisation changes into completions.
/// Requests made while the system prompt is up wait for the same answer,
/// so concurrent requests share one prompt. Used on the main thread only.
class LocationPermissionRequester : public LocationManagerDelegate,
                                    public std::enable_shared_from_this<LocationPermissionRequester> {
 public:
  using Completion = std::function<void(bool granted)>;

  /// Queues `completion`; asks for when-in-use access unless a request is
  /// already out.
  void requestAuthorization(Completion completion);

  /// A final state (granted or refused) answers every queued completion in
  /// order of arrival and empties the queue. Any other state only allows
  /// the next request to ask again; the queue stays.
  void locationManagerDidChangeAuthorization(AuthorizationState state) override;

 private:
  LocationManager& locationMgr();

  std::shared_ptr<LocationManager> locationMgr_;
  std::vector<Completion> callbacks_;
  bool isAuthorizationRequested_ = false;
};

}  // namespace vantu
