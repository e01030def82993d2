#pragma once
// Authorisation on the simulated device: a state per resource and what the
// user answers when the system prompt for it appears. A prompt is answered
// on the main queue, or held until the runner's "answerPrompt" command
// answers it (to script a prompt that stays up while more calls arrive).

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platforms/sim/sim_ui.h"
#include "vantu/platform/authorization.h"
#include "vantu/platform/dispatch.h"

namespace vantu::sim {

class SimAuthorization : public Authorization {
 public:
  struct Resource {
    AuthorizationState state = AuthorizationState::notDetermined;
    /// The user's answer to the prompt; none holds the prompt up.
    std::optional<AuthorizationState> answer = AuthorizationState::authorized;
  };

  SimAuthorization(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<EffectLog> effects)
      : dispatch_(std::move(dispatch)), effects_(std::move(effects)) {}

  Resource& resource(ProtectedResource r) { return resources_[r]; }
  /// Answers every held prompt for `r` with `state` (on the main queue);
  /// false when no prompt for it is up.
  bool answerHeldPrompt(ProtectedResource r, AuthorizationState state);
  std::size_t heldPrompts(ProtectedResource r) const;

 protected:
  AuthorizationState doState(ProtectedResource r) const override;
  void doRequest(ProtectedResource r, Completion completion) override;

 private:
  void answer(ProtectedResource r, AuthorizationState state, Completion completion);

  std::shared_ptr<Dispatch> dispatch_;
  std::shared_ptr<EffectLog> effects_;
  std::map<ProtectedResource, Resource> resources_;
  std::map<ProtectedResource, std::vector<Completion>> held_;
};

}  // namespace vantu::sim
