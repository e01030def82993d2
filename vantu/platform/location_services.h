#pragma once
// Location port: the app's authorisation to use the device's position, the
// when-in-use request and the last position the system knows. The state
// read here is the same one the authorisation port reports for
// `ProtectedResource::location`; location code asks this port because the
// outcome of its request arrives as a change told to a manager's delegate,
// not as a completion.

#include <memory>
#include <optional>

#include "vantu/platform/authorization.h"

namespace vantu {

/// A position in degrees.
struct Coordinate {
  double latitude = 0;
  double longitude = 0;
  bool operator==(const Coordinate&) const = default;
};

class LocationManagerDelegate {
 public:
  virtual ~LocationManagerDelegate() = default;
  /// The app's location authorisation changed (or a prompt was answered).
  /// Called on the main thread.
  virtual void locationManagerDidChangeAuthorization(AuthorizationState state) = 0;
};

class LocationManager {
 public:
  virtual ~LocationManager() = default;

  /// The delegate is held weakly, as the system holds a manager's delegate.
  void setDelegate(std::weak_ptr<LocationManagerDelegate> delegate) { delegate_ = std::move(delegate); }

  /// Shows the system prompt for when-in-use access if the app's state is
  /// `notDetermined` and no prompt is up; otherwise does nothing. The
  /// user's answer arrives later through the delegate.
  void requestWhenInUseAuthorization() { doRequestWhenInUseAuthorization(); }

  /// The last fix the system has, if any; no update is started.
  std::optional<Coordinate> location() const { return doLocation(); }

  /// Called by the platform on the main thread when the authorisation changes.
  void authorizationDidChange(AuthorizationState state) {
    if (auto delegate = delegate_.lock()) delegate->locationManagerDidChangeAuthorization(state);
  }

 protected:
  virtual void doRequestWhenInUseAuthorization() = 0;
  virtual std::optional<Coordinate> doLocation() const = 0;

 private:
  std::weak_ptr<LocationManagerDelegate> delegate_;
};

class LocationServices {
 public:
  virtual ~LocationServices() = default;

  /// The app's location authorisation (one state for every manager). When
  /// location services are switched off for the whole device it reads
  /// `denied`.
  AuthorizationState authorizationState() const { return doAuthorizationState(); }

  /// A new manager; each one is told of authorisation changes.
  std::shared_ptr<LocationManager> makeManager() { return doMakeManager(); }

 protected:
  virtual AuthorizationState doAuthorizationState() const = 0;
  virtual std::shared_ptr<LocationManager> doMakeManager() = 0;
};

}  // namespace vantu
