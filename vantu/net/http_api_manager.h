#pragma once
// HTTPAPIManager: builds one HTTP request from a page's arguments, runs it
// on the platform's transport and gathers its measurements for the host.
// One manager per request; it lives until its transfer has reported.

#include <any>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "vantu/core/h5_op_error.h"
#include "vantu/platform/http_transport.h"
#include "vantu/platform/object.h"
#include "vantu/value/value.h"

namespace vantu {

/// Measurements of one request by key: "urlRequest" (UrlRequest),
/// "urlResponse" (HttpUrlResponse), "error" (PlatformError), "responseTime"
/// (double seconds), "responseData" (Bytes), "responseMetrics" (TaskMetrics).
using OstrixParams = std::map<std::string, std::any>;

class HTTPAPIManager : public Object, public std::enable_shared_from_this<HTTPAPIManager> {
 public:
  using Completion = std::function<void(bool success, std::optional<H5OpError> error, std::optional<Dict> result)>;

  /// Called with the measurements whenever an update leaves at least two.
  std::function<void(const OstrixParams&)> metrixObtained;
  OstrixParams ostrixParams;

  /// Builds the request from `data` ("url", "method", optional "data",
  /// "headers", "timeout" in milliseconds) and runs it; `completion` runs
  /// once on the main queue. The timeout is whole seconds: "timeout" / 1000,
  /// so anything under 1000 ms is a timeout of 0, which fails at once.
  void performRequest(const Dict& data, Completion completion);

  /// The part of a completed transfer that the page sees: "headers",
  /// "status", "data" (the body as UTF-8 text, "" when it is not UTF-8) and
  /// "headersStr" (the headers as JSON text).
  static Dict resultOf(const HttpUrlResponse& response, const Bytes& body);

 private:
  void transferEnded(const UrlRequest& request, HttpTransferResult result, Completion completion);
  void metricsArrived(TaskMetrics metrics);
  void recorded();

  std::chrono::steady_clock::time_point start_;
};

}  // namespace vantu
