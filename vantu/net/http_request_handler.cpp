#include "vantu/net/http_request_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/net/http_api_manager.h"

namespace vantu {
namespace {

template <class T>
std::optional<T> entry(const OstrixParams& params, const std::string& key) {
  auto found = params.find(key);
  if (found == params.end()) return std::nullopt;
  const T* value = std::any_cast<T>(&found->second);
  return value ? std::optional<T>(*value) : std::nullopt;
}

void report(const std::shared_ptr<ViewController>& viewController, const OstrixParams& params) {
  if (!viewController) return;
  auto delegate =
      std::dynamic_pointer_cast<VantuH5Delegate>(getVH5ViewControllerDelegateRecursively(*viewController));
  if (!delegate) return;
  delegate->trackWithOstrix(entry<UrlRequest>(params, "urlRequest"), entry<HttpUrlResponse>(params, "urlResponse"),
                            entry<PlatformError>(params, "error"), entry<double>(params, "responseTime").value_or(0),
                            entry<Bytes>(params, "responseData"), entry<TaskMetrics>(params, "responseMetrics"),
                            std::nullopt, std::nullopt, [](bool, std::optional<PlatformError>, std::optional<Value>) {});
}

}  // namespace

void HTTPRequestHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto manager = std::make_shared<HTTPAPIManager>();
  manager->metrixObtained = [viewController = params.viewController](const OstrixParams& measured) {
    report(viewController, measured);
  };
  manager->performRequest(params.data, [callback = params.callback](bool success, std::optional<H5OpError> error,
                                                                    std::optional<Dict> result) {
    if (success && result) {
      callback(*result);
    } else if (error) {
      // Pages receive the message as the key and the code as its value.
      callback(Dict{{error->message, error->code}});
    } else {
      answerFailure(callback, "failed to fetch access token!");
    }
  });
}

}  // namespace vantu
