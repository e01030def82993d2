// The simulated device's run loop: ordering, virtual time, groups and
// waiting for work that other threads hand back. Settling with unreleased
// work (and timing out on it) is pinned by runner case 03.

#include "platforms/sim/sim_dispatch.h"

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/bridge_test_fixture.h"

namespace vantu {
namespace {

using namespace std::chrono_literals;
using Log = std::vector<std::string>;

class SimDispatchTest : public testing_support::BridgeTestFixture {
 protected:
  sim::SimDispatch& loop() { return device.dispatch(); }
  std::shared_ptr<SerialQueue> main() { return device.dispatch().main(); }
  Task note(std::string name) {
    return [this, name] { log.push_back(name); };
  }
  Task noteTime(std::string name) {
    return [this, name] {
      log.push_back(name + "@" + std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(loop().now()).count()));
    };
  }
  Log log;
};

TEST_F(SimDispatchTest, TasksRunInPostOrderAcrossQueuesOnlyWhenTheLoopRunsAndGroupsNotifyByPosting) {
  auto serial = loop().makeSerialQueue("serial");
  main()->async(note("main1"));
  serial->async(note("serial1"));
  main()->async([this, serial] {
    log.push_back("main2");
    serial->async(note("posted by main2"));
  });
  serial->async(note("serial2"));
  EXPECT_TRUE(log.empty() && loop().hasReadyTasks());
  EXPECT_EQ(loop().runReady(), 5u);
  EXPECT_EQ(log, (Log{"main1", "serial1", "main2", "serial2", "posted by main2"}));
  EXPECT_FALSE(loop().hasReadyTasks());

  // A group with nothing entered notifies at once, by posting (linux dispatch_test joins groups of work).
  log.clear();
  DispatchGroup empty;
  empty.notify(main(), note("empty done"));
  EXPECT_TRUE(log.empty());
  loop().runReady();
  EXPECT_EQ(log, (Log{"empty done"}));
}

TEST_F(SimDispatchTest, TimersRunWhenTheClockReachesThemInDueOrder) {
  auto serial = loop().makeSerialQueue("serial");
  main()->asyncAfter(3s, noteTime("t3"));
  main()->asyncAfter(1s, noteTime("t1a"));
  main()->async(noteTime("now"));
  serial->asyncAfter(2s, noteTime("t2"));
  serial->asyncAfter(1s, noteTime("t1b"));
  main()->asyncAfter(-5s, noteTime("negative"));
  loop().runReady();
  loop().advance(500ms);
  EXPECT_EQ(log, (Log{"now@0", "negative@0"}));
  EXPECT_EQ(loop().nextTimer(), Duration(1s));
  loop().advance(600ms);
  EXPECT_EQ(log.size(), 4u);
  loop().advance(5s);
  EXPECT_EQ(log, (Log{"now@0", "negative@0", "t1a@1000", "t1b@1000", "t2@2000", "t3@3000"}));
  EXPECT_EQ(loop().now(), 6100ms);
  EXPECT_EQ(loop().nextTimer(), std::nullopt);

  // A timer posted by a timer is due relative to its own time.
  log.clear();
  main()->asyncAfter(1s, [this] {
    noteTime("first")();
    main()->asyncAfter(1s, [this] {
      noteTime("second")();
      main()->asyncAfter(2s, noteTime("third"));
      main()->async(noteTime("follow-up"));
    });
  });
  loop().advance(3s);
  EXPECT_EQ(loop().nextTimer(), Duration(10100ms));
  loop().advance(1s);
  EXPECT_EQ(log, (Log{"first@7100", "second@8100", "follow-up@8100", "third@10100"}));
}

TEST_F(SimDispatchTest, AdvancingByDecimalSecondsReachesMillisecondTimers) {
  // 1.001 is just below 1001 ms as a double: truncation would miss the timer.
  EXPECT_EQ(secondsToDuration(1.001), 1001ms);
  main()->asyncAfter(1001ms, note("timer"));
  loop().advance(secondsToDuration(1.001));
  EXPECT_EQ(log, (Log{"timer"}));
}

TEST_F(SimDispatchTest, SyncRunsInlineOnTheLoopThreadAndFromOthersWaitsForTheLoopThatSettles) {
  auto serial = loop().makeSerialQueue("serial");
  serial->sync(note("inline"));
  EXPECT_FALSE(loop().hasReadyTasks());
  main()->async([&] {
    log.push_back("outer");
    serial->sync(note("nested"));
    log.push_back("after nested");
  });
  main()->async(note("next"));
  loop().runReady();
  EXPECT_EQ(log, (Log{"inline", "outer", "nested", "after nested", "next"}));

  // The worker starts only once the loop runs, so settle is already waiting;
  // its sync blocks until the loop has run the task.
  log.clear();
  auto work = loop().beginOutstandingWork();
  std::promise<void> start;
  auto started = start.get_future();
  main()->async([&start] { start.set_value(); });
  std::thread::id syncRanOn, completionRanOn;
  std::thread worker([&, work = std::move(work)]() mutable {
    started.wait();
    serial->sync([&] { syncRanOn = std::this_thread::get_id(); });
    main()->async([&] {
      completionRanOn = std::this_thread::get_id();
      log.push_back("completion");
    });
    work.reset();
  });
  EXPECT_TRUE(loop().settle(10s));
  worker.join();
  EXPECT_EQ(syncRanOn, std::this_thread::get_id());
  EXPECT_EQ(completionRanOn, std::this_thread::get_id());
  EXPECT_EQ(log, (Log{"completion"}));
  EXPECT_EQ(loop().outstandingWork(), 0u);
}

}  // namespace
}  // namespace vantu
