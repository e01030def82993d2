#pragma once
// A host delegate whose answers come from a scenario or a device profile.
// Each operation is either scripted (recorded, then answered as written) or
// left to the protocol default ("default" in the script: forward or fail).

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platforms/sim/sim_answer.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/platform/dispatch.h"

namespace vantu::sim {

/// Every delegate operation the scenario can script, by short name.
inline constexpr std::string_view kDelegateOperations[] = {
    "popToHome",        "navigate",        "openDeeplink",          "login",
    "logout",           "handleSessionExpiry", "fetchAuthToken",    "fetchParamsAgainstKey",
    "fetchValuesForKeys", "trackCustomEventFor", "getCustomerId",   "trackWithOstrix",
    "getAppInfo"};

class SimHostDelegate : public VantuH5Delegate {
 public:
  /// Told of every scripted call: the delegate's name, the operation and
  /// its arguments.
  using CallRecorder = std::function<void(std::string_view delegate, std::string_view operation, Dict arguments)>;

  /// Answers given "after" seconds are delivered on `dispatch`'s main queue.
  SimHostDelegate(std::string name, std::shared_ptr<Dispatch> dispatch, CallRecorder record);

  /// nullopt = the protocol default for this operation.
  void script(std::string operation, std::optional<ScriptedAnswer> answer);
  void scriptOtherwise(std::optional<ScriptedAnswer> answer) { otherwise_ = std::move(answer); }
  const std::string& name() const { return name_; }

  void popToHome(std::string pageKey, std::shared_ptr<ViewController> viewController, DelegateHandler handler) override;
  void navigate(std::string to, std::optional<Dict> data, bool clearBackStack, bool finishThis,
                DelegateHandler handler) override;
  void openDeeplink(std::string deeplink, DelegateHandler handler) override;
  void login(Dict data, DelegateHandler handler) override;
  void logout(Dict data, DelegateHandler handler) override;
  void handleSessionExpiry(Dict data, DelegateHandler handler) override;
  void fetchAuthToken(Dict data, DelegateHandler handler) override;
  void fetchParamsAgainstKey(std::string key, DelegateHandler handler) override;
  void fetchValuesForKeys(std::vector<std::string> keys, DelegateHandler handler) override;
  void trackCustomEventFor(Dict variables, DelegateHandler handler) override;
  void getCustomerId(DelegateHandler handler) override;
  void trackWithOstrix(std::optional<UrlRequest> request, std::optional<HttpUrlResponse> response,
                       std::optional<PlatformError> error, double responseTime, std::optional<Bytes> reponseData,
                       std::optional<TaskMetrics> metrics, std::optional<std::string> customMessage,
                       std::optional<Dict> additionalParams, DelegateHandler handler) override;
  void getAppInfo(DelegateHandler handler) override;

 private:
  /// The scripted answer for `operation`, or nullopt when it is left to the default.
  std::optional<ScriptedAnswer> scripted(std::string_view operation) const;
  /// Records the call and answers it as scripted, or hands it to
  /// `fallback` (the protocol default) when the scenario says "default".
  template <class Fallback>
  void handle(std::string_view operation, Dict arguments, DelegateHandler handler, Fallback fallback);

  std::string name_;
  std::shared_ptr<Dispatch> dispatch_;
  CallRecorder record_;
  std::map<std::string, std::optional<ScriptedAnswer>, std::less<>> answers_;
  std::optional<ScriptedAnswer> otherwise_ = ScriptedAnswer{};
};

}  // namespace vantu::sim
