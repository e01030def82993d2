#pragma once
// Dispatch on Linux.
//
// The main queue forwards to a `MainContext`: whatever runs the host's main
// thread. `EventLoop` is the plain one, run by the host (`run()` until
// `stop()`) or by tests and headless programs (`runUntilIdle()`, `runFor()`,
// `runUntil()`); a GUI host plugs in its toolkit's main context instead.
//
// Every named serial queue has its own worker thread, started on first use
// and joined when the queue is destroyed. Tasks run in posting order; delayed
// tasks wait on a monotonic clock. Nothing polls: idle threads sleep on a
// condition variable until a task arrives or the next timer is due.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <queue>
#include <string>
#include <thread>
#include <vector>

#include "vantu/platform/dispatch.h"

namespace vantu::linux_platform {

/// What the main queue needs from the thing that runs the main thread.
class MainContext {
 public:
  virtual ~MainContext() = default;
  /// Runs `task` on the main thread once `delay` has passed (zero: after the
  /// work already posted). Callable from any thread.
  virtual void post(Duration delay, Task task) = 0;
  /// True on the thread that runs main-thread work.
  virtual bool isMainThread() const = 0;
};

/// Ready tasks in FIFO order plus a timer heap on the steady clock. Not
/// thread-safe by itself: the owner holds its mutex.
class TaskSchedule {
 public:
  using Clock = std::chrono::steady_clock;

  void add(Clock::time_point due, Task task);
  /// Moves timers due at `now` to the ready list (in due order, posting
  /// order among equal due times), then takes the first ready task.
  bool takeReady(Clock::time_point now, Task& task);
  std::optional<Clock::time_point> nextTimer() const;
  bool hasReady(Clock::time_point now) const;
  /// Drops the timers that are not due yet.
  void dropTimers();
  bool empty() const { return ready_.empty() && timers_.empty(); }

 private:
  struct Timer {
    Clock::time_point due;
    std::uint64_t sequence;
    mutable Task task;
    bool operator>(const Timer& other) const {
      return due != other.due ? due > other.due : sequence > other.sequence;
    }
  };
  std::deque<Task> ready_;
  std::priority_queue<Timer, std::vector<Timer>, std::greater<>> timers_;
  std::uint64_t sequence_ = 0;
};

/// The main-thread event loop a host runs itself.
///
/// The main thread is the thread inside one of the run calls or, while none
/// is running, the thread that made the loop.
class EventLoop : public MainContext {
 public:
  EventLoop();

  /// Runs tasks and timers until `stop()`. A `stop()` that came before
  /// `run()` makes it return at once; each stop ends one run.
  void run();
  /// Makes `run()` return after the task in progress. Callable from any
  /// thread, including from a task.
  void stop();
  /// Runs every task that is due now, including tasks they post and timers
  /// that fall due meanwhile; does not wait. Returns the number run.
  std::size_t runUntilIdle();
  /// Runs tasks and timers for `duration` of real time. Returns the number
  /// run.
  std::size_t runFor(Duration duration);
  /// Runs tasks until `done()` holds or `timeout` has passed. `done()` is
  /// checked on entry and after every task, so what it reads should be set
  /// by main-queue work. Returns whether `done()` held.
  bool runUntil(const std::function<bool()>& done, Duration timeout);

  void post(Duration delay, Task task) override;
  bool isMainThread() const override;

 private:
  class Running;
  std::size_t runLoop(std::optional<TaskSchedule::Clock::time_point> deadline, bool untilIdle, bool untilStopped,
                      const std::function<bool()>* done);

  mutable std::mutex mutex_;
  std::condition_variable wake_;
  TaskSchedule schedule_;
  bool stopRequested_ = false;
  std::thread::id owner_;
  std::thread::id runner_;
  int runDepth_ = 0;
};

class LinuxDispatch : public Dispatch {
 public:
  /// With no context, the dispatch makes its own `EventLoop` (see `loop()`).
  explicit LinuxDispatch(std::shared_ptr<MainContext> mainContext = nullptr);

  /// The event loop this dispatch made, or nullptr when it was given a
  /// context of another kind.
  const std::shared_ptr<EventLoop>& loop() const { return loop_; }
  const std::shared_ptr<MainContext>& mainContext() const { return context_; }
  /// Outstanding-work tokens alive now.
  std::size_t outstandingWork() const { return outstanding_->load(); }

 protected:
  std::shared_ptr<SerialQueue> doMain() override { return main_; }
  std::shared_ptr<SerialQueue> doMakeSerialQueue(std::string label) override;
  Duration doNow() const override;
  std::shared_ptr<OutstandingWork> doBeginOutstandingWork() override;

 private:
  std::shared_ptr<EventLoop> loop_;
  std::shared_ptr<MainContext> context_;
  std::shared_ptr<SerialQueue> main_;
  std::chrono::steady_clock::time_point start_;
  std::shared_ptr<std::atomic<std::size_t>> outstanding_;
};

/// A serial queue with its own worker thread (see the file comment).
///
/// `sync` from another thread waits for the task; `sync` from a task of this
/// queue runs the task at once, inline, ahead of anything still queued (it
/// would otherwise wait for itself forever).
///
/// Destroying the queue lets the worker finish the tasks that are due and
/// then joins it; delayed tasks not yet due are dropped. When the last
/// reference goes away inside one of the queue's own tasks, the worker is
/// detached instead and ends by itself after that task.
class WorkerQueue : public SerialQueue {
 public:
  explicit WorkerQueue(std::string label);
  ~WorkerQueue() override;

  /// Whether the worker thread has been started (tests).
  bool started() const;

 protected:
  void doAsync(Task task) override;
  void doAsyncAfter(Duration delay, Task task) override;
  void doSync(Task task) override;

 private:
  struct State;
  void add(Duration delay, Task task);
  static void work(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
};

}  // namespace vantu::linux_platform
