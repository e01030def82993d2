#pragma once
// HTTP transport port: runs one transfer off the main thread and reports
// back on the main queue. A transfer keeps its body in memory, or streams
// it into a file (downloads), so memory does not grow with the file size.

#include <filesystem>
#include <functional>
#include <optional>

#include "vantu/platform/http_records.h"
#include "vantu/platform/platform_error.h"
#include "vantu/platform/transfer_progress.h"

namespace vantu {

/// The error domain of failed transfers. Codes follow the URL loading
/// errors of the reference platform, which pages may already know.
inline constexpr std::string_view kUrlErrorDomain = "URLErrorDomain";

enum class UrlErrorCode : std::int64_t {
  unknown = -1,
  cancelled = -999,
  badUrl = -1000,
  timedOut = -1001,
  unsupportedUrl = -1002,
  cannotFindHost = -1003,
  cannotConnectToHost = -1004,
  networkConnectionLost = -1005,
  tooManyRedirects = -1007,
  badServerResponse = -1011,
  cannotCreateFile = -3000,
  cannotWriteToFile = -3003,
  secureConnectionFailed = -1200,
};

struct HttpTransfer {
  UrlRequest request;
  /// When set, the body is written to a new file at this path (which must
  /// not exist yet) instead of being kept in memory. A failed transfer
  /// leaves no file behind.
  std::optional<std::filesystem::path> downloadTo;
  /// When set, called on the main queue as the body arrives (as often as
  /// the transport likes, never after the completion), and once more with
  /// the final count just before the completion when that count was not
  /// reported yet.
  std::function<void(const TransferProgress&)> progress;
};

struct HttpTransferResult {
  /// Set whenever the transfer failed; the other fields may still hold
  /// what arrived before the failure.
  std::optional<PlatformError> error;
  /// The response; unset when there was none or it was not HTTP (an answer
  /// without a status line completes without error and without this).
  std::optional<HttpUrlResponse> httpResponse;
  /// The body of an in-memory transfer that ended without error.
  std::optional<Bytes> body;
  /// The file of a download that ended without error.
  std::optional<std::filesystem::path> file;
};

class HttpTransport {
 public:
  using Completion = std::function<void(HttpTransferResult)>;
  using MetricsHandler = std::function<void(TaskMetrics)>;

  virtual ~HttpTransport() = default;

  /// Starts `transfer`. `completion` is called once and `metrics` once
  /// (when given), both on the main queue, in the order the transport
  /// documents. A timeout of 0 seconds or less fails at once with
  /// `timedOut`: it never means "no limit".
  void start(HttpTransfer transfer, Completion completion, MetricsHandler metrics = {}) {
    doStart(std::move(transfer), std::move(completion), std::move(metrics));
  }

 protected:
  virtual void doStart(HttpTransfer transfer, Completion completion, MetricsHandler metrics) = 0;
};

}  // namespace vantu
