#pragma once
// The authorisation port over the permission store. A decided resource is
// answered at once (on the main queue) without asking anyone. An undecided
// one is put to the consent prompt; the answer is stored (allowed →
// `authorized`, or `authorizedWhenInUse` for the location; refused or
// dismissed → `denied`) and given to every request that came while the
// question was up, in order of arrival: one question per resource at a time.
//
// Without a consent prompt (a headless host) nobody can be asked: a request
// for an undecided resource answers `denied` and stores nothing, so the
// resource stays undecided until the permission file or a later host with a
// prompt decides it.

#include <map>
#include <memory>
#include <vector>

#include "platforms/linux/consent_prompt.h"
#include "platforms/linux/permission_store.h"

namespace vantu::linux_platform {

class StoredAuthorization : public Authorization, public std::enable_shared_from_this<StoredAuthorization> {
 public:
  StoredAuthorization(std::shared_ptr<PermissionStore> store, std::shared_ptr<Dispatch> dispatch,
                      std::shared_ptr<ConsentPrompt> prompt)
      : store_(std::move(store)), dispatch_(std::move(dispatch)), prompt_(std::move(prompt)) {}

  /// The state an allowing answer stores for `resource`.
  static AuthorizationState grantedState(ProtectedResource resource);

 protected:
  AuthorizationState doState(ProtectedResource resource) const override;
  void doRequest(ProtectedResource resource, Completion completion) override;

 private:
  void answered(ProtectedResource resource, bool allowed);

  std::shared_ptr<PermissionStore> store_;
  std::shared_ptr<Dispatch> dispatch_;
  std::shared_ptr<ConsentPrompt> prompt_;
  /// Requests waiting for the question that is up, per resource.
  std::map<ProtectedResource, std::vector<Completion>> waiting_;
};

}  // namespace vantu::linux_platform
