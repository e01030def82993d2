#pragma once
// Dispatch on the simulated device: one manual run loop with a virtual
// clock. Every queue (main and serial) feeds the same loop, so tests run
// deterministically and never sleep; time moves only when told to.
//
// Other threads (real HTTP transfers, say) may post work; the loop counts
// outstanding real work so a caller can wait until it has all come back.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <optional>
#include <mutex>
#include <thread>

#include "vantu/platform/dispatch.h"

namespace vantu::sim {

class SimDispatch : public Dispatch, public std::enable_shared_from_this<SimDispatch> {
 public:
  SimDispatch();

  /// Runs every task that is due now, including tasks they post. Returns
  /// the number of tasks run.
  std::size_t runReady();
  /// Moves the clock forward by `delta`, running timers at their due times.
  void advance(Duration delta);
  /// Runs due tasks until nothing is due and no real work is outstanding,
  /// waiting up to `realTimeout` (wall-clock) for outstanding work.
  /// Returns false when the wait timed out.
  bool settle(std::chrono::milliseconds realTimeout);

  bool hasReadyTasks() const;
  std::size_t outstandingWork() const;
  /// Time of the next timer, if any is scheduled.
  std::optional<Duration> nextTimer() const;

  // Used by the queues.
  void post(Duration delay, Task task);
  bool onLoopThread() const;

 protected:
  std::shared_ptr<SerialQueue> doMain() override;
  std::shared_ptr<SerialQueue> doMakeSerialQueue(std::string label) override;
  Duration doNow() const override;
  std::shared_ptr<OutstandingWork> doBeginOutstandingWork() override;

 private:
  struct Work;
  friend struct Work;
  void workEnded();
  bool popDue(Task& task);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Duration now_{0};
  std::uint64_t sequence_ = 0;
  std::multimap<std::pair<Duration, std::uint64_t>, Task> tasks_;
  std::size_t outstanding_ = 0;
  std::thread::id loopThread_;
  std::shared_ptr<SerialQueue> main_;
};

}  // namespace vantu::sim
