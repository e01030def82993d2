#pragma once
// Device-owner authentication on Linux-PAM: the person at the desktop
// proves they are the user the program runs as by passing that user's PAM
// authentication stack (normally their login password).
//
// Each evaluation runs pam_authenticate for the effective user on the
// service's worker thread. Whatever PAM asks is relayed to a
// `PasswordPrompt` on the main thread, and the worker waits for the answer;
// the main thread never waits for PAM. A wrong password is asked again, up
// to a fixed number of attempts. The reply is called on the worker thread.
// Evaluations run one after the other, so two pages never stack two
// password prompts.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "platforms/linux/password_prompt.h"
#include "vantu/platform/device_owner_authentication.h"
#include "vantu/platform/dispatch.h"

namespace vantu::linux_platform {

/// Error codes this platform gives beside the port's own.
namespace pam_error {
/// PAM failed in a way no other code describes (a broken module, say).
inline constexpr std::int64_t kAuthenticationFailed = -1;
/// The service was destroyed while the evaluation was waiting for the user.
inline constexpr std::int64_t kSystemCancel = -4;
}  // namespace pam_error

struct PamOwnerAuthenticationOptions {
  /// The PAM service name. Without a file of that name in the PAM
  /// configuration, PAM uses the "other" service (on Debian: common-auth,
  /// the login password).
  std::string service = "vantu-h5";
  /// Where the PAM configuration is read from; the system's (/etc/pam.d)
  /// when empty.
  std::filesystem::path configDirectory;
  /// Wrong passwords allowed before the evaluation fails as locked out.
  int maxAttempts = 3;
};

/// What an evaluation does after one pam_authenticate call.
struct AttemptVerdict {
  enum class Kind { Succeeded, TryAgain, Failed };
  Kind kind = Kind::Failed;
  /// The port's error code when `kind` is `Failed`.
  std::int64_t errorCode = 0;
  bool operator==(const AttemptVerdict&) const = default;
};

/// Judges attempt number `attempt` (from 1) of `maxAttempts`, which ended
/// with `pamResult` (a PAM_* code), `cancelled` telling whether the user
/// cancelled a prompt during it.
AttemptVerdict judgeAttempt(int pamResult, bool cancelled, int attempt, int maxAttempts);

class PamOwnerAuthentication : public DeviceOwnerAuthentication {
 public:
  /// `prompt` may be null: every evaluation then fails with "no passcode
  /// set" at once, since nobody could type a password.
  PamOwnerAuthentication(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<PasswordPrompt> prompt,
                         PamOwnerAuthenticationOptions options = {});
  /// Evaluations still waiting for the user end with `kSystemCancel`. The
  /// worker is joined once no context made here is left either.
  ~PamOwnerAuthentication() override;

  struct Core;

 protected:
  std::shared_ptr<AuthenticationContext> doMakeContext() override;

 private:
  std::shared_ptr<Core> core_;
};

}  // namespace vantu::linux_platform
