#include "platforms/linux/stored_authorization.h"

#include <utility>

namespace vantu::linux_platform {

AuthorizationState StoredAuthorization::grantedState(ProtectedResource resource) {
  return resource == ProtectedResource::location ? AuthorizationState::authorizedWhenInUse
                                                 : AuthorizationState::authorized;
}

AuthorizationState StoredAuthorization::doState(ProtectedResource resource) const {
  return store_->state(resource);
}

void StoredAuthorization::doRequest(ProtectedResource resource, Completion completion) {
  const AuthorizationState state = store_->state(resource);
  if (state != AuthorizationState::notDetermined || !prompt_) {
    const AuthorizationState answer = state == AuthorizationState::notDetermined ? AuthorizationState::denied : state;
    dispatch_->main()->async([completion = std::move(completion), answer] { completion(answer); });
    return;
  }
  auto& waiting = waiting_[resource];
  waiting.push_back(std::move(completion));
  if (waiting.size() > 1) return;  // the question is already up
  prompt_->ask(resource, [weak = weak_from_this(), resource](bool allowed) {
    if (auto self = weak.lock()) self->answered(resource, allowed);
  });
}

void StoredAuthorization::answered(ProtectedResource resource, bool allowed) {
  const AuthorizationState state = allowed ? grantedState(resource) : AuthorizationState::denied;
  // Stored first, so that whoever is told reads the new state.
  store_->set(resource, state);
  auto waiting = std::exchange(waiting_[resource], {});
  for (auto& completion : waiting) completion(state);
}

}  // namespace vantu::linux_platform
