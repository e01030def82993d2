#include "platforms/sim/sim_authorization.h"

namespace vantu::sim {

AuthorizationState SimAuthorization::doState(ProtectedResource r) const {
  auto it = resources_.find(r);
  return it == resources_.end() ? Resource{}.state : it->second.state;
}

void SimAuthorization::doRequest(ProtectedResource r, Completion completion) {
  Resource& res = resources_[r];
  if (res.state != AuthorizationState::notDetermined) {
    // No prompt: the system answers what it already knows.
    dispatch_->main()->async([completion = std::move(completion), state = res.state] { completion(state); });
    return;
  }
  effects_->record(Dict{{"effect", "permissionPrompt"}, {"resource", std::string(toString(r))}});
  if (res.answer) {
    answer(r, *res.answer, std::move(completion));
  } else {
    held_[r].push_back(std::move(completion));
  }
}

void SimAuthorization::answer(ProtectedResource r, AuthorizationState state, Completion completion) {
  resources_[r].state = state;
  dispatch_->main()->async([completion = std::move(completion), state] { completion(state); });
}

bool SimAuthorization::answerHeldPrompt(ProtectedResource r, AuthorizationState state) {
  auto it = held_.find(r);
  if (it == held_.end() || it->second.empty()) return false;
  auto completions = std::exchange(it->second, {});
  for (auto& completion : completions) answer(r, state, std::move(completion));
  return true;
}

std::size_t SimAuthorization::heldPrompts(ProtectedResource r) const {
  auto it = held_.find(r);
  return it == held_.end() ? 0 : it->second.size();
}

}  // namespace vantu::sim
