#pragma once
// Dispatch port: the main queue, named serial queues, delayed work and
// groups. Bridge calls and all UI work run on the main queue.
//
// Public operations are non-virtual and forward to protected hooks, so every
// platform gets the same argument handling and a single place to trace.

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace vantu {

using Task = std::function<void()>;
using Duration = std::chrono::nanoseconds;

/// Rounds to the nearest nanosecond: truncating would turn 1.001 s into
/// 1000999999 ns, one short of a 1001 ms delay.
inline constexpr Duration secondsToDuration(double seconds) {
  return std::chrono::round<Duration>(std::chrono::duration<double>(seconds));
}

class SerialQueue {
 public:
  explicit SerialQueue(std::string label) : label_(std::move(label)) {}
  virtual ~SerialQueue() = default;

  const std::string& label() const { return label_; }

  /// Runs `task` after every task queued before it.
  void async(Task task) { doAsync(std::move(task)); }
  /// Runs `task` on the queue after `delay`.
  void asyncAfter(Duration delay, Task task) { doAsyncAfter(delay < Duration::zero() ? Duration::zero() : delay, std::move(task)); }
  /// Runs `task` on the queue and waits for it. Must not be called from a
  /// task of the same queue.
  void sync(Task task) { doSync(std::move(task)); }

 protected:
  virtual void doAsync(Task task) = 0;
  virtual void doAsyncAfter(Duration delay, Task task) = 0;
  virtual void doSync(Task task) = 0;

 private:
  std::string label_;
};

/// Keeps a run loop from being considered idle while real I/O (an HTTP
/// transfer, a download) that a call started is still outstanding.
class OutstandingWork {
 public:
  virtual ~OutstandingWork() = default;
};

class Dispatch {
 public:
  virtual ~Dispatch() = default;

  std::shared_ptr<SerialQueue> main() { return doMain(); }
  std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) { return doMakeSerialQueue(std::move(label)); }
  /// Time since the platform started (virtual on the simulated device).
  Duration now() const { return doNow(); }
  /// Held by whoever waits for real I/O; released when the I/O has ended.
  std::shared_ptr<OutstandingWork> beginOutstandingWork() { return doBeginOutstandingWork(); }

 protected:
  virtual std::shared_ptr<SerialQueue> doMain() = 0;
  virtual std::shared_ptr<SerialQueue> doMakeSerialQueue(std::string label) = 0;
  virtual Duration doNow() const = 0;
  virtual std::shared_ptr<OutstandingWork> doBeginOutstandingWork() = 0;
};

/// A dispatch group: `notify` work runs on its queue once every `enter` has
/// been matched by a `leave` (at once if nothing is entered).
class DispatchGroup {
 public:
  void enter();
  void leave();
  void notify(std::shared_ptr<SerialQueue> queue, Task task);

 private:
  void flushIfEmpty(std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  long count_ = 0;
  std::vector<std::pair<std::shared_ptr<SerialQueue>, Task>> waiting_;
};

}  // namespace vantu
