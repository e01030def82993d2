#pragma once
// The host application's delegate: everything only the host can do. Every
// operation answers through the same handler shape. An operation a host
// does not override keeps its default: most forward to the environment's
// delegate (so a screen-level delegate may implement only a few), the two
// value lookups always fail.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/platform/http_records.h"
#include "vantu/platform/object.h"
#include "vantu/platform/platform_error.h"
#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu {

/// (success, error, value); the host calls it once per request.
using DelegateHandler = std::function<void(bool success, std::optional<PlatformError> error, std::optional<Value> value)>;

class VantuH5Delegate : public virtual Object {
 public:
  static constexpr std::string_view kErrorDomain = "VantuH5DelegateErrorDomain";

  virtual void popToHome(std::string pageKey, std::shared_ptr<ViewController> viewController, DelegateHandler handler);
  virtual void navigate(std::string to, std::optional<Dict> data, bool clearBackStack, bool finishThis,
                        DelegateHandler handler);
  virtual void openDeeplink(std::string deeplink, DelegateHandler handler);
  virtual void login(Dict data, DelegateHandler handler);
  virtual void logout(Dict data, DelegateHandler handler);
  virtual void handleSessionExpiry(Dict data, DelegateHandler handler);
  virtual void fetchAuthToken(Dict data, DelegateHandler handler);
  virtual void fetchParamsAgainstKey(std::string key, DelegateHandler handler);
  virtual void fetchValuesForKeys(std::vector<std::string> keys, DelegateHandler handler);
  virtual void trackCustomEventFor(Dict variables, DelegateHandler handler);
  virtual void getCustomerId(DelegateHandler handler);
  virtual void trackWithOstrix(std::optional<UrlRequest> request, std::optional<HttpUrlResponse> response,
                               std::optional<PlatformError> error, double responseTime,
                               std::optional<Bytes> reponseData, std::optional<TaskMetrics> metrics,
                               std::optional<std::string> customMessage, std::optional<Dict> additionalParams,
                               DelegateHandler handler);
  virtual void getAppInfo(DelegateHandler handler);

  /// The error a default implementation answers with: domain
  /// "VantuH5DelegateErrorDomain", code -1, the two fixed texts.
  static PlatformError defaultImplementationError(std::string_view selector);

 private:
  // The environment's delegate to forward to, or nothing (then the default
  // fails). A delegate never forwards to itself: a host that installs a
  // delegate in the environment without implementing an operation gets the
  // failure instead of endless recursion.
  std::shared_ptr<VantuH5Delegate> forwardTarget() const;
};

}  // namespace vantu
