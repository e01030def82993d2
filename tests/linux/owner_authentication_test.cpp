// Owner authentication on Linux-PAM against real PAM stacks written to a
// temporary configuration directory, with a prompt answering from a script.

#ifdef VANTU_HAVE_PAM

#include <gtest/gtest.h>
#include <security/pam_appl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platforms/linux/linux_dispatch.h"
#include "platforms/linux/linux_geocoder.h"
#include "platforms/linux/linux_platform.h"
#include "platforms/linux/pam_owner_authentication.h"
#include "vantu/device/address_geo_code_handler.h"
#include "vantu/device/local_authentication_handler.h"
#include "vantu/value/json.h"

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
      {PAM_AUTH_ERR, false, 1, {Kind::TryAgain, 0}},
      {PAM_AUTH_ERR, false, 2, {Kind::TryAgain, 0}},
      {PAM_AUTH_ERR, false, 3, {Kind::Failed, codes::kBiometryLockout}},
      {PAM_AUTH_ERR, true, 1, {Kind::Failed, codes::kUserCancel}},
      {PAM_CONV_ERR, true, 3, {Kind::Failed, codes::kUserCancel}},
      {PAM_MAXTRIES, false, 1, {Kind::Failed, codes::kBiometryLockout}},
      {PAM_AUTHINFO_UNAVAIL, false, 1, {Kind::Failed, codes::kPasscodeNotSet}},
      {PAM_USER_UNKNOWN, false, 2, {Kind::Failed, codes::kPasscodeNotSet}},
      {PAM_CRED_INSUFFICIENT, false, 1, {Kind::Failed, codes::kPasscodeNotSet}},
      {PAM_CONV_ERR, false, 1, {Kind::Failed, pam_error::kAuthenticationFailed}},
      {PAM_SYSTEM_ERR, false, 1, {Kind::Failed, pam_error::kAuthenticationFailed}},
      {PAM_ABORT, false, 1, {Kind::Failed, pam_error::kAuthenticationFailed}},
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
    std::ofstream(dir / "deny") << "auth required pam_deny.so\n";
    std::ofstream(dir / "broken") << "auth required pam_vantu_absent_module.so\n";
    // A password that must be "right": the usual success-skips-deny stack.
    std::ofstream(dir / "checked") << "auth [success=1 default=ignore] pam_exec.so expose_authtok quiet "
                                   << check.string() << "\nauth requisite pam_deny.so\nauth required pam_permit.so\n";
  }
  static void TearDownTestSuite() { fs::remove_all(dir); }
  static inline fs::path dir;

  struct Outcome { bool success = false; std::optional<std::int64_t> code; bool repliedOffMain = false; };

  /// Evaluates once and runs the main loop until the reply has come.
  Outcome evaluate(DeviceOwnerAuthentication& service) {
    auto context = service.makeContext();
    context->setLocalizedCancelTitle("Thôi");
    std::atomic<bool> done = false;
    Outcome outcome;
    const auto main = std::this_thread::get_id();
    context->evaluateDeviceOwnerAuthentication(
        "Confirm the payment", [&](bool success, std::optional<PlatformError> error) {
          outcome = {success, error ? std::optional(error->code) : std::nullopt, std::this_thread::get_id() != main};
          dispatch->main()->async([&] { done = true; });
        });
    EXPECT_TRUE(dispatch->loop()->runUntil([&] { return done.load(); }, 60s));
    return outcome;
  }

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
      {"checked", {"right"}, std::nullopt, {0}},
      {"checked", {"wrong", "right"}, std::nullopt, {0, 1}},
      {"checked", {"wrong", "wrong", "wrong"}, codes::kBiometryLockout, {0, 1, 2}},
      {"checked", {std::nullopt}, codes::kUserCancel, {0}},
      {"checked", {"wrong", std::nullopt}, codes::kUserCancel, {0, 1}},
      {"deny", {}, codes::kBiometryLockout, {}},
      {"absent", {}, codes::kPasscodeNotSet, {}},  // no such file and no "other"
      {"broken", {}, pam_error::kAuthenticationFailed, {}},
      {"permit", {}, codes::kPasscodeNotSet, {}, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.service) + " with " + std::to_string(row.script.size()) + " answers" +
                 (row.withPrompt ? "" : ", no prompt"));
    prompt = std::make_shared<ScriptedPrompt>();
    prompt->script = row.script;
    auto outcome = evaluate(*service(row.service, row.withPrompt ? prompt : nullptr));
    EXPECT_EQ(outcome.success, !row.code);
    EXPECT_EQ(outcome.code, row.code);
    EXPECT_TRUE(outcome.repliedOffMain);
    EXPECT_FALSE(prompt->askedOffMain);
    std::vector<int> failed;
    for (const auto& request : prompt->shown) {
      failed.push_back(request.failedAttempts);
      EXPECT_EQ(request.reason, "Confirm the payment");
      EXPECT_EQ(request.cancelTitle, "Thôi");
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

TEST_F(PamAuthenticationTest, TheBundlesOwnerAuthenticationGoesThroughPamAndGeocodingAnswersItsError) {
  std::ofstream(dir / "vantu-h5") << "auth required pam_permit.so\n";
  LinuxPlatformOptions options;
  options.passwordPrompt = prompt;
  options.ownerAuthentication.configDirectory = dir;
  auto bundle = makeLinuxPlatform(std::move(options));
  installPlatform(bundle.platform);
  std::vector<std::string> answers;
  auto record = [&](const Value& answer) {
    // The authentication reply comes off the main thread; hop back.
    bundle.dispatch->main()->async([&answers, text = json::write(answer)] { answers.push_back(text); });
  };
  auto authentication = std::make_shared<LocalAuthenticationHandler>();
  authentication->handleWith({nullptr, Dict{}, record});
  auto geocoding = std::make_shared<AddressGeoCodeHandler>();
  geocoding->handleWith({nullptr, Dict{{"latitude", 10.77}, {"longitude", 106.7}}, record});
  EXPECT_TRUE(bundle.loop->runUntil([&] { return answers.size() == 2; }, 60s));
  std::sort(answers.begin(), answers.end());
  EXPECT_EQ(answers, (std::vector<std::string>{R"({"data":{"code":2,"message":")" +
                                                   std::string(LinuxGeocoder::kUnavailableDescription) + R"("}})",
                                               R"({"data":{"success":true}})"}));
  installPlatform(nullptr);
}

}  // namespace
}  // namespace vantu::linux_platform

#endif  // VANTU_HAVE_PAM
