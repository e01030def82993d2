#include "platforms/linux/pam_owner_authentication.h"

#include <pwd.h>
#include <security/pam_appl.h>
#include <string.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace vantu::linux_platform {

AttemptVerdict judgeAttempt(int pamResult, bool cancelled, int attempt, int maxAttempts) {
  using Kind = AttemptVerdict::Kind;
  if (cancelled) return {Kind::Failed, authentication_error::kUserCancel};
  switch (pamResult) {
    case PAM_SUCCESS:
      return {Kind::Succeeded, 0};
    case PAM_AUTH_ERR:
      if (attempt < maxAttempts) return {Kind::TryAgain, 0};
      return {Kind::Failed, authentication_error::kBiometryLockout};
    case PAM_MAXTRIES:
      return {Kind::Failed, authentication_error::kBiometryLockout};
    case PAM_AUTHINFO_UNAVAIL:
    case PAM_USER_UNKNOWN:
    case PAM_CRED_INSUFFICIENT:
      return {Kind::Failed, authentication_error::kPasscodeNotSet};
    default:
      return {Kind::Failed, pam_error::kAuthenticationFailed};
  }
}

namespace {

constexpr const char* kErrorDomain = "vantu.PamOwnerAuthentication";

PlatformError failure(std::int64_t code, std::string description) {
  return PlatformError{kErrorDomain, code, std::move(description), std::nullopt, {}};
}

std::string pamText(int pamResult) { return ::pam_strerror(nullptr, pamResult); }

std::string describe(std::int64_t code, int pamResult) {
  switch (code) {
    case authentication_error::kUserCancel:
      return "The user cancelled the password prompt.";
    case authentication_error::kBiometryLockout:
      return "Too many failed attempts.";
    case authentication_error::kPasscodeNotSet:
      return "No credentials can be checked for this user: " + pamText(pamResult) + ".";
    case pam_error::kSystemCancel:
      return "The authentication service was shut down.";
    default:
      return "PAM authentication failed: " + pamText(pamResult) + ".";
  }
}

std::optional<std::string> effectiveUserName() {
  long size = ::sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return std::nullopt;
  return std::string(found->pw_name);
}

void dropReplies(pam_response* replies, int count) {
  for (int i = 0; i < count; ++i) {
    if (replies[i].resp) {
      wipeMemory(replies[i].resp, ::strlen(replies[i].resp));
      std::free(replies[i].resp);
    }
  }
  std::free(replies);
}

}  // namespace

/// One evaluation: settings fixed at the start, the worker's own progress,
/// and the answer the main thread hands over.
class Evaluation : public std::enable_shared_from_this<Evaluation> {
 public:
  Evaluation(std::string reason, std::string cancelTitle, std::shared_ptr<PasswordPrompt> prompt,
             std::shared_ptr<SerialQueue> main)
      : reason_(std::move(reason)),
        cancelTitle_(std::move(cancelTitle)),
        prompt_(std::move(prompt)),
        main_(std::move(main)) {}

  /// Runs the PAM conversation on the calling (worker) thread.
  std::optional<PlatformError> run(const PamOwnerAuthenticationOptions& options) {
    auto user = effectiveUserName();
    if (!user)
      return failure(authentication_error::kPasscodeNotSet,
                     describe(authentication_error::kPasscodeNotSet, PAM_USER_UNKNOWN));
    const pam_conv conversation{&Evaluation::converse, this};
    pam_handle_t* handle = nullptr;
    const int started = options.configDirectory.empty()
                            ? ::pam_start(options.service.c_str(), user->c_str(), &conversation, &handle)
                            : ::pam_start_confdir(options.service.c_str(), user->c_str(), &conversation,
                                                  options.configDirectory.c_str(), &handle);
    // Without a usable configuration nothing can be checked.
    if (started != PAM_SUCCESS)
      return failure(authentication_error::kPasscodeNotSet, describe(authentication_error::kPasscodeNotSet, started));

    int result = PAM_SUCCESS;
    AttemptVerdict verdict;
    for (int attempt = 1;; ++attempt) {
      result = ::pam_authenticate(handle, PAM_DISALLOW_NULL_AUTHTOK);
      verdict = judgeAttempt(result, cancelled_, attempt, options.maxAttempts);
      if (abandoned()) verdict = {AttemptVerdict::Kind::Failed, pam_error::kSystemCancel};
      if (verdict.kind != AttemptVerdict::Kind::TryAgain) break;
      ++failedAttempts_;
      ::pam_set_item(handle, PAM_AUTHTOK, nullptr);
    }
    ::pam_end(handle, result);
    if (verdict.kind == AttemptVerdict::Kind::Succeeded) return std::nullopt;
    return failure(verdict.errorCode, describe(verdict.errorCode, result));
  }

  /// Ends a wait for the user; later prompts are refused.
  void abandon() {
    std::lock_guard lock(mutex_);
    abandoned_ = true;
    changed_.notify_all();
  }

 private:
  bool abandoned() {
    std::lock_guard lock(mutex_);
    return abandoned_;
  }

  static int converse(int count, const pam_message** messages, pam_response** responses, void* data) {
    auto* self = static_cast<Evaluation*>(data);
    if (count <= 0 || count > PAM_MAX_NUM_MSG || !responses) return PAM_CONV_ERR;
    auto* replies = static_cast<pam_response*>(std::calloc(static_cast<std::size_t>(count), sizeof(pam_response)));
    if (!replies) return PAM_BUF_ERR;
    for (int i = 0; i < count; ++i) {
      const pam_message& message = *messages[i];
      const std::string text = message.msg ? message.msg : "";
      if (message.msg_style == PAM_ERROR_MSG || message.msg_style == PAM_TEXT_INFO) {
        self->notice_ += (self->notice_.empty() ? "" : "\n") + text;
        continue;
      }
      std::optional<Secret> secret;
      if (message.msg_style == PAM_PROMPT_ECHO_OFF || message.msg_style == PAM_PROMPT_ECHO_ON) {
        secret = self->ask(text, message.msg_style == PAM_PROMPT_ECHO_ON);
      }
      if (!secret) {
        dropReplies(replies, count);
        return PAM_CONV_ERR;
      }
      replies[i].resp = ::strdup(secret->text().c_str());
      if (!replies[i].resp) {
        dropReplies(replies, count);
        return PAM_BUF_ERR;
      }
    }
    *responses = replies;
    return PAM_SUCCESS;
  }

  /// Shows the prompt on the main thread and waits for its answer.
  std::optional<Secret> ask(const std::string& text, bool echo) {
    if (cancelled_) return std::nullopt;
    {
      std::lock_guard lock(mutex_);
      if (abandoned_) return std::nullopt;
      answered_ = false;
      answer_.reset();
    }
    PasswordPrompt::Request request{reason_, text, echo, cancelTitle_, failedAttempts_, std::exchange(notice_, {})};
    main_->async([self = shared_from_this(), request = std::move(request)]() mutable {
      // Held weakly: a prompt that keeps its answer function must not keep
      // the evaluation (and, through it, the prompt) alive.
      self->prompt_->ask(std::move(request), [weak = self->weak_from_this()](std::optional<Secret> given) {
        auto self = weak.lock();
        if (!self) return;
        std::lock_guard lock(self->mutex_);
        if (self->answered_) return;
        self->answer_ = std::move(given);
        self->answered_ = true;
        self->changed_.notify_all();
      });
    });
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return answered_ || abandoned_; });
    if (!answered_) return std::nullopt;
    if (!answer_) cancelled_ = true;
    return std::exchange(answer_, std::nullopt);
  }

  const std::string reason_;
  const std::string cancelTitle_;
  const std::shared_ptr<PasswordPrompt> prompt_;
  const std::shared_ptr<SerialQueue> main_;

  // The worker's own.
  int failedAttempts_ = 0;
  bool cancelled_ = false;
  std::string notice_;

  // Shared with the main thread.
  std::mutex mutex_;
  std::condition_variable changed_;
  bool abandoned_ = false;
  bool answered_ = false;
  std::optional<Secret> answer_;
};

struct PamOwnerAuthentication::Core {
  PamOwnerAuthenticationOptions options;
  std::shared_ptr<PasswordPrompt> prompt;
  std::shared_ptr<SerialQueue> main;
  std::shared_ptr<SerialQueue> worker;
  std::mutex mutex;
  std::vector<std::weak_ptr<Evaluation>> running;
  bool closed = false;

  void evaluate(std::string reason, std::string cancelTitle, AuthenticationContext::Reply reply) {
    if (!prompt) {
      worker->async([reply = std::move(reply)] {
        reply(false,
              failure(authentication_error::kPasscodeNotSet, "There is no password prompt to ask the user with."));
      });
      return;
    }
    auto evaluation = std::make_shared<Evaluation>(std::move(reason), std::move(cancelTitle), prompt, main);
    {
      std::lock_guard lock(mutex);
      std::erase_if(running, [](const auto& weak) { return weak.expired(); });
      running.push_back(evaluation);
      if (closed) evaluation->abandon();
    }
    worker->async([evaluation, options = options, reply = std::move(reply)] {
      auto error = evaluation->run(options);
      reply(!error, std::move(error));
    });
  }

  void close() {
    std::lock_guard lock(mutex);
    closed = true;
    for (const auto& weak : running) {
      if (auto evaluation = weak.lock()) evaluation->abandon();
    }
  }
};

namespace {

class PamAuthenticationContext : public AuthenticationContext {
 public:
  explicit PamAuthenticationContext(std::shared_ptr<PamOwnerAuthentication::Core> core) : core_(std::move(core)) {}

 protected:
  // The fallback title has no use here: the password is the only method.
  void doEvaluateDeviceOwnerAuthentication(std::string reason, Reply reply) override {
    core_->evaluate(std::move(reason), localizedCancelTitle(), std::move(reply));
  }

 private:
  std::shared_ptr<PamOwnerAuthentication::Core> core_;
};

}  // namespace

PamOwnerAuthentication::PamOwnerAuthentication(std::shared_ptr<Dispatch> dispatch,
                                               std::shared_ptr<PasswordPrompt> prompt,
                                               PamOwnerAuthenticationOptions options)
    : core_(std::make_shared<Core>()) {
  core_->options = std::move(options);
  core_->prompt = std::move(prompt);
  core_->main = dispatch->main();
  core_->worker = dispatch->makeSerialQueue("vantu.ownerAuthentication");
}

PamOwnerAuthentication::~PamOwnerAuthentication() { core_->close(); }

std::shared_ptr<AuthenticationContext> PamOwnerAuthentication::doMakeContext() {
  return std::make_shared<PamAuthenticationContext>(core_);
}

}  // namespace vantu::linux_platform
