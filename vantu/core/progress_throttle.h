#pragma once
// Throttles the progress of one call on its way to the page: at most one
// report per interval goes out, the latest one held back goes out when the
// interval is over, and the one still held when the call answers goes out
// just before the answer. So a page sees ~10 reports a second however fast
// the transfer runs, and always the final count.

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "vantu/core/h5_handler_input_params.h"
#include "vantu/platform/dispatch.h"

namespace vantu {

class ProgressThrottle : public std::enable_shared_from_this<ProgressThrottle> {
 public:
  static constexpr Duration kInterval = std::chrono::milliseconds(100);
  using Send = std::function<void(const TransferProgress&)>;

  /// Times reports on `dispatch`'s clock (virtual on the simulated device)
  /// and sends held ones from its main queue.
  static std::shared_ptr<ProgressThrottle> make(Send send, std::shared_ptr<Dispatch> dispatch);

  /// A new report: sent now, or held back until the interval is over. A
  /// report equal to the last one sent is dropped.
  void report(const TransferProgress& progress);
  /// Sends the report held back, if any (just before the call's answer).
  void flush();

 private:
  ProgressThrottle(Send send, std::shared_ptr<Dispatch> dispatch) : send_(std::move(send)), dispatch_(std::move(dispatch)) {}
  void sendLocked(const TransferProgress& progress);

  Send send_;
  std::shared_ptr<Dispatch> dispatch_;
  std::mutex mutex_;  // answers may come on another thread
  std::optional<Duration> lastSentAt_;
  std::optional<TransferProgress> lastSent_;
  std::optional<TransferProgress> held_;
  bool timerSet_ = false;
};

/// A call's way back to the page with throttled progress: `progress`
/// reports through a ProgressThrottle, and `callback` flushes it before
/// every answer.
struct ThrottledCall {
  H5Callback callback;
  H5Progress progress;
};
ThrottledCall throttledCall(std::function<void(const Value&)> answer, ProgressThrottle::Send progress,
                            std::shared_ptr<Dispatch> dispatch);

}  // namespace vantu
