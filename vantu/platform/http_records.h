#pragma once
// The HTTP records the host delegate receives with a request's measurements.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vantu/value/value.h"

namespace vantu {

using HeaderFields = std::vector<std::pair<std::string, std::string>>;

struct UrlRequest {
  std::string url;
  std::string method = "GET";
  HeaderFields headers;
  std::optional<Bytes> body;
  double timeoutSeconds = 60;
};

struct HttpUrlResponse {
  std::string url;
  std::int64_t statusCode = 0;
  HeaderFields headers;
};

/// Timing of one transfer, in seconds from the start of the request, as
/// far as the transport knows them; byte counts of what crossed the wire.
struct TaskMetrics {
  std::optional<double> domainLookupStart, domainLookupEnd;
  std::optional<double> connectStart, connectEnd;
  std::optional<double> secureConnectionStart, secureConnectionEnd;
  std::optional<double> requestStart, responseStart, responseEnd;
  double totalSeconds = 0;
  std::int64_t bytesSent = 0;
  std::int64_t bytesReceived = 0;
  std::int64_t redirectCount = 0;
};

}  // namespace vantu
