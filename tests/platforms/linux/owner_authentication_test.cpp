// Owner authentication on Linux-PAM against real PAM stacks written to a
// temporary configuration directory, with a prompt answering from a script.

#ifdef VANTU_HAVE_PAM

#include <gtest/gtest.h>
#include <security/pam_appl.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platforms/linux/linux_dispatch.h"
#include "platforms/linux/pam_owner_authentication.h"

namespace vantu::linux_platform {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Kind = AttemptVerdict::Kind;
namespace codes = authentication_error;

TEST(PamVerdict, EachPamResultMapsToRetryOrAPortCode) {
  struct Row { int pam; bool cancelled; int attempt; AttemptVerdict expected; };
  const Row rows[] = {
      {PAM_SUCCESS, false, 1, {Kind::Succeeded, 0}},
      {PAM_SUCCESS, true, 1, {Kind::Failed, codes::kUserCancel}},
      {PAM_AUTH_ERR, false, 2, {Kind::TryAgain, 0}},
      {PAM_AUTH_ERR, false, 3, {Kind::Failed, codes::kBiometryLockout}},
      {PAM_MAXTRIES, false, 1, {Kind::Failed, codes::kBiometryLockout}},
      {PAM_USER_UNKNOWN, false, 2, {Kind::Failed, codes::kPasscodeNotSet}},
      {PAM_SYSTEM_ERR, false, 1, {Kind::Failed, pam_error::kAuthenticationFailed}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(judgeAttempt(row.pam, row.cancelled, row.attempt, 3), row.expected)
        << "pam " << row.pam << " cancelled " << row.cancelled << " attempt " << row.attempt;
  }
}

TEST(PamSecret, ClearingOverwritesTheText) {
  Secret secret(std::string("correct horse"));
  const char* bytes = secret.text().data();
  secret.clear();
  EXPECT_TRUE(secret.text().empty());
  EXPECT_EQ(std::memcmp(bytes, std::string(13, '\0').data(), 13), 0);
}

/// Answers each prompt with the next scripted answer (nothing: cancel), or
/// keeps the answer when the script has run out.
struct ScriptedPrompt : PasswordPrompt {
  std::deque<std::optional<std::string>> script;
  std::vector<Request> shown;
  std::vector<Answer> held;
  std::thread::id mainThread = std::this_thread::get_id();
  bool askedOffMain = false;
  void show(Request request, Answer answer) override {
    askedOffMain |= std::this_thread::get_id() != mainThread;
    shown.push_back(std::move(request));
    if (script.empty()) return held.push_back(std::move(answer));
    auto next = std::move(script.front());
    script.pop_front();
    answer(next ? std::optional<Secret>(Secret(*next)) : std::nullopt);
  }
};

class PamAuthenticationTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir = fs::temp_directory_path() / ("vantu-pam-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    const auto check = dir / "check.sh";
    std::ofstream(check) << "#!/bin/sh\npw=$(tr -d '\\000'); [ \"$pw\" = right ]\n";
    fs::permissions(check, fs::perms::owner_all);
    std::ofstream(dir / "permit") << "auth required pam_permit.so\n";
    std::ofstream(dir / "broken") << "auth required pam_vantu_absent_module.so\n";
    // A password that must be "right": the usual success-skips-deny stack.
    std::ofstream(dir / "checked") << "auth [success=1 default=ignore] pam_exec.so expose_authtok quiet "
                                   << check.string() << "\nauth requisite pam_deny.so\nauth required pam_permit.so\n";
  }
  static void TearDownTestSuite() { fs::remove_all(dir); }
  static inline fs::path dir;

  std::shared_ptr<PamOwnerAuthentication> service(const std::string& name, std::shared_ptr<PasswordPrompt> with) {
    return std::make_shared<PamOwnerAuthentication>(dispatch, std::move(with),
                                                    PamOwnerAuthenticationOptions{name, dir, 3});
  }

  std::shared_ptr<LinuxDispatch> dispatch = std::make_shared<LinuxDispatch>();
  std::shared_ptr<ScriptedPrompt> prompt = std::make_shared<ScriptedPrompt>();
};

TEST_F(PamAuthenticationTest, StacksAndAnswersGiveTheirOutcome) {
  using Script = std::deque<std::optional<std::string>>;
  struct Row {  // no code: success
    const char* service; Script script; std::optional<std::int64_t> code; std::vector<int> failedBeforeEachPrompt;
    bool withPrompt = true;
  };
  const Row rows[] = {
      {"permit", {}, std::nullopt, {}},
      {"checked", {"wrong", "right"}, std::nullopt, {0, 1}},
      {"absent", {}, codes::kPasscodeNotSet, {}},  // no such file and no "other"
      {"broken", {}, pam_error::kAuthenticationFailed, {}},
      {"permit", {}, codes::kPasscodeNotSet, {}, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.service + std::string(row.withPrompt ? "" : ", no prompt"));
    prompt = std::make_shared<ScriptedPrompt>();
    prompt->script = row.script;
    auto tested = service(row.service, row.withPrompt ? prompt : nullptr);
    auto context = tested->makeContext();
    std::atomic<bool> done = false;
    std::optional<std::int64_t> code;
    bool success = false, repliedOffMain = false;
    context->evaluateDeviceOwnerAuthentication(
        "Confirm the payment", [&, main = std::this_thread::get_id()](bool ok, std::optional<PlatformError> error) {
          success = ok;
          code = error ? std::optional(error->code) : std::nullopt;
          repliedOffMain = std::this_thread::get_id() != main;
          dispatch->main()->async([&] { done = true; });
        });
    ASSERT_TRUE(dispatch->loop()->runUntil([&] { return done.load(); }, 60s));
    EXPECT_EQ(success, !row.code);
    EXPECT_EQ(code, row.code);
    EXPECT_TRUE(repliedOffMain);
    EXPECT_FALSE(prompt->askedOffMain);
    std::vector<int> failed;
    for (const auto& request : prompt->shown) {
      failed.push_back(request.failedAttempts);
      EXPECT_EQ(request.reason, "Confirm the payment");
      EXPECT_EQ(request.prompt, "Password: ");
      EXPECT_FALSE(request.echo);
    }
    EXPECT_EQ(failed, row.failedBeforeEachPrompt);
  }
}

TEST_F(PamAuthenticationTest, DestroyingTheServiceEndsAWaitingEvaluation) {
  auto doomed = service("checked", prompt);
  auto context = doomed->makeContext();
  std::atomic<bool> replied = false;
  std::optional<std::int64_t> code;
  context->evaluateDeviceOwnerAuthentication("r", [&](bool, std::optional<PlatformError> error) {
    code = error ? std::optional(error->code) : std::nullopt;
    dispatch->main()->async([&] { replied = true; });
  });
  ASSERT_TRUE(dispatch->loop()->runUntil([&] { return prompt->held.size() == 1; }, 60s));
  doomed.reset();
  ASSERT_TRUE(dispatch->loop()->runUntil([&] { return replied.load(); }, 60s));
  EXPECT_EQ(code, pam_error::kSystemCancel);
  prompt->held[0](Secret(std::string("right")));  // too late: ignored
}

}  // namespace
}  // namespace vantu::linux_platform

#endif  // VANTU_HAVE_PAM
