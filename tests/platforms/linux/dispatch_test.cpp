// Dispatch on Linux: the main event loop, worker-thread serial queues,
// timers on the monotonic clock, sync hand-offs and queue shutdown.

#include "platforms/linux/linux_dispatch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/platforms/linux/proc_counts.h"

namespace vantu::linux_platform {
namespace {

using namespace std::chrono_literals;
using Log = std::vector<std::string>;
constexpr auto kSafety = 20s;  // a safety net only: nothing here measures speed

struct SharedLog {  // appended to from several threads
  void add(std::string entry) { std::lock_guard lock(mutex); entries.push_back(std::move(entry)); }
  Log get() { std::lock_guard lock(mutex); return entries; }
  std::mutex mutex;
  Log entries;
};

/// A one-shot signal; copies share it, so the setter may still be inside
/// `set()` when the waiter returns and unwinds.
struct Latch {
  void set() const { promise->set_value(); }
  bool waitFor(Duration timeout) const { return future.wait_for(timeout) == std::future_status::ready; }
  std::shared_ptr<std::promise<void>> promise = std::make_shared<std::promise<void>>();
  std::shared_future<void> future = promise->get_future().share();
};

class LinuxDispatchTest : public ::testing::Test {
 protected:
  LinuxDispatch dispatch;
  EventLoop& loop() { return *dispatch.loop(); }
  std::shared_ptr<SerialQueue> main() { return dispatch.main(); }
};

TEST_F(LinuxDispatchTest, MainQueueRunsPostedWorkInOrderOnlyWhenTheLoopRunsAndSyncsOnTheLoopThread) {
  Log log;
  main()->async([&] { log.push_back("a"), main()->async([&] { log.push_back("posted by a"); }); });
  main()->async([&] { log.push_back("b"); });
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(loop().runUntilIdle(), 3u);
  EXPECT_EQ(log, (Log{"a", "b", "posted by a"}));

  // run() wakes for work from other threads (sync runs it on the loop thread), returns on stop and keeps a stop
  // made before it.
  log.clear();
  std::thread::id ranOn;
  std::thread poster([&] {
    std::this_thread::sleep_for(20ms);  // let run() go to sleep first
    main()->sync([&] { ranOn = std::this_thread::get_id(); });
    main()->async([&] { log.push_back("from another thread"); });
    main()->async([&] { loop().stop(); });
    main()->async([&] { log.push_back("after stop"); });
  });
  loop().run();
  poster.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_EQ(log, (Log{"from another thread"}));
  loop().stop();
  loop().run();  // returns at once
  EXPECT_EQ(log.size(), 1u);
  loop().runUntilIdle();
  EXPECT_EQ(log, (Log{"from another thread", "after stop"}));

  // sync() on the loop thread runs inline.
  bool ran = false;
  main()->async([&] {
    main()->sync([&] { ran = true; });
    EXPECT_TRUE(ran);
  });
  EXPECT_EQ(loop().runUntilIdle(), 1u);
}

TEST_F(LinuxDispatchTest, TimersRunInDueOrderAndNeverEarlyOnMainAndSerialQueues) {
  for (const auto& queue : {main(), dispatch.makeSerialQueue("q")}) {
    SCOPED_TRACE(queue == main() ? "main" : "serial");
    const auto start = dispatch.now();
    SharedLog log;
    Latch last;
    auto timer = [&](Duration due, std::string name) {
      queue->asyncAfter(due, [&, due, name, last] {
        log.add(dispatch.now() - start >= due ? name : name + " early");
        if (name == "60") last.set();
      });
    };
    timer(60ms, "60"), timer(20ms, "20"), timer(40ms, "40"), timer(1h, "1h");
    queue->async([&] { log.add("now"); });
    if (queue == main()) {
      EXPECT_EQ(loop().runUntilIdle(), 1u);  // does not wait for timers
      ASSERT_TRUE(loop().runUntil([&] { return last.waitFor(0s); }, kSafety));
    }
    ASSERT_TRUE(last.waitFor(kSafety));
    EXPECT_EQ(loop().runFor(10ms), 0u);  // the hour-long timer stays put
    EXPECT_EQ(log.get(), (Log{"now", "20", "40", "60"}));
  }
}

TEST_F(LinuxDispatchTest, SerialQueuesRunInOrderOnOneWorkerStartedOnFirstUseAndSyncPassesOnExceptionsOrRunsInline) {
  auto queue = dispatch.makeSerialQueue("q");
  auto* worker = dynamic_cast<WorkerQueue*>(queue.get());
  ASSERT_NE(worker, nullptr);
  EXPECT_FALSE(worker->started());
  std::vector<std::pair<int, std::thread::id>> ran;
  for (int i = 0; i < 200; ++i) queue->async([&, i] { ran.emplace_back(i, std::this_thread::get_id()); });
  EXPECT_TRUE(worker->started());
  queue->sync([] {});  // waits for all of them
  ASSERT_EQ(ran.size(), 200u);
  for (int i = 0; i < 200; ++i) EXPECT_EQ(ran[i], std::pair(i, ran[0].second));
  EXPECT_NE(ran[0].second, std::this_thread::get_id());
  EXPECT_THROW(queue->sync([] { throw std::runtime_error("inside"); }), std::runtime_error);
  int value = 0;
  queue->sync([&] { value = 8; });  // the worker survived
  EXPECT_EQ(value, 8);
  queue->sync([&] {
    queue->sync([&] { value = 9; });  // on its own queue: inline
    EXPECT_EQ(value, 9);
  });
}

TEST_F(LinuxDispatchTest, DestroyingAQueueFinishesDueWorkDropsTimersAndJoinsItsThreadEvenFromItsOwnTask) {
  auto baseThreads = countThreads();
  std::atomic<int> ran{0};
  auto timerState = std::make_shared<int>(0);
  {
    auto queue = dispatch.makeSerialQueue("q");
    queue->async([] { std::this_thread::sleep_for(5ms); });  // the rest queue up behind it
    for (int i = 0; i < 100; ++i) queue->async([&] { ++ran; });
    queue->asyncAfter(1h, [timerState] { ++*timerState; });
    EXPECT_LE(threadsSettledAtMost(baseThreads + 1), baseThreads + 1);
  }
  EXPECT_EQ(ran, 100);
  EXPECT_EQ(timerState.use_count(), 1);  // the dropped timer released what it held
  EXPECT_EQ(*timerState, 0);
  EXPECT_LE(threadsSettledAtMost(baseThreads), baseThreads);

  // A queue released inside its own task shuts down without deadlock.
  auto queue = dispatch.makeSerialQueue("q");
  Latch gate, done;
  queue->async([gate] { gate.waitFor(kSafety); });
  queue->async([done, self = queue]() mutable { self.reset(), done.set(); });  // destroyed on its own worker
  queue.reset();
  gate.set();
  ASSERT_TRUE(done.waitFor(kSafety));
  EXPECT_LE(threadsSettledAtMost(baseThreads), baseThreads);  // the detached worker ends by itself
}

}  // namespace
}  // namespace vantu::linux_platform
