#pragma once
// The HTTP transport port on libcurl, shared by the Linux platform and the
// simulated device (neither depends on the other).
//
// One worker thread drives a curl multi handle for every transfer of the
// transport: transfers run side by side without a thread each, and share
// the multi handle's connection cache (keep-alive between requests to the
// same server). Each transfer holds an outstanding-work token of the
// platform's dispatch from its start until its last report has run on the
// main queue, so a run loop that waits for real I/O waits for it.
//
// Timeouts are idle timeouts, like the reference platform's request
// timeout: the connection must be made within the limit, and the transfer
// fails when nothing at all arrives for that long. A large download may
// take longer than the limit as long as data keeps coming.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "vantu/platform/dispatch.h"
#include "vantu/platform/http_transport.h"

namespace vantu::curl {

/// When a transfer's measurements reach the main queue, relative to its
/// completion.
enum class MetricsOrder { beforeCompletion, afterCompletion };

struct CurlTransportOptions {
  MetricsOrder metricsOrder = MetricsOrder::beforeCompletion;
  /// Largest number of redirects followed.
  long maxRedirects = 16;
};

class CurlTransport : public HttpTransport {
 public:
  explicit CurlTransport(std::shared_ptr<Dispatch> dispatch, CurlTransportOptions options = {});
  /// Stops the worker. Transfers still running are abandoned: their
  /// reports never come and their partial files are removed.
  ~CurlTransport() override;
  CurlTransport(const CurlTransport&) = delete;
  CurlTransport& operator=(const CurlTransport&) = delete;

  void setMetricsOrder(MetricsOrder order) { metricsOrder_ = order; }
  MetricsOrder metricsOrder() const { return metricsOrder_; }

  struct Job;

 protected:
  void doStart(HttpTransfer transfer, Completion completion, MetricsHandler metrics) override;

 private:
  void run();
  /// Whether a job arrives within `limit` (spinning, without sleeping).
  bool awaitPending(std::chrono::microseconds limit) const;
  void finish(std::unique_ptr<Job> job, HttpTransferResult result, TaskMetrics metrics);

  std::shared_ptr<Dispatch> dispatch_;
  CurlTransportOptions options_;
  std::atomic<MetricsOrder> metricsOrder_;
  std::mutex mutex_;
  std::deque<std::unique_ptr<Job>> pending_;
  bool stopping_ = false;
  /// Set with each new job, so the worker can watch for one without the lock.
  std::atomic<bool> hasPending_ = false;
  /// Set while the worker sleeps in libcurl's poll: only then does a new job
  /// need to wake it (a wake-up costs the worker a round of system calls).
  std::atomic<bool> polling_ = false;
  void* multi_ = nullptr;  // CURLM*, touched only by the worker after start
  std::thread worker_;
};

}  // namespace vantu::curl
