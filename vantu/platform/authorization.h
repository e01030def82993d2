#pragma once
// Access to protected resources: the state the system keeps for each one
// and the system prompt that asks the user for it.

#include <functional>
#include <optional>
#include <string_view>

namespace vantu {

enum class ProtectedResource { camera, photoLibrary, location, microphone, contacts, speechRecognition };

/// The system's own states. Not every resource uses every state:
/// `authorizedWhenInUse` belongs to the location, `limited` to the photo
/// library. `unrecognized` stands for a state the library does not know
/// (one a newer system might report); bridges must cope with it.
enum class AuthorizationState {
  notDetermined,
  restricted,
  denied,
  authorized,
  authorizedWhenInUse,
  limited,
  unrecognized,
};

std::string_view toString(ProtectedResource resource);
std::optional<ProtectedResource> protectedResourceNamed(std::string_view name);
std::string_view toString(AuthorizationState state);
std::optional<AuthorizationState> authorizationStateNamed(std::string_view name);

class Authorization {
 public:
  using Completion = std::function<void(AuthorizationState)>;

  virtual ~Authorization() = default;

  AuthorizationState state(ProtectedResource resource) const { return doState(resource); }

  /// Asks the user (when the state is `notDetermined`; otherwise the
  /// platform answers the current state without a prompt) and calls
  /// `completion` once with the resulting state. The platform chooses the
  /// thread of the answer, as a system prompt does: callers that need the
  /// main thread move there themselves.
  void request(ProtectedResource resource, Completion completion) {
    doRequest(resource, std::move(completion));
  }

 protected:
  virtual AuthorizationState doState(ProtectedResource resource) const = 0;
  virtual void doRequest(ProtectedResource resource, Completion completion) = 0;
};

}  // namespace vantu
