// The simulated device's run loop: ordering, virtual time, groups and
// waiting for work that other threads hand back.

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

  log.clear();
  DispatchGroup group;
  group.enter();
  group.enter();
  group.notify(main(), note("done"));
  group.leave();
  loop().runReady();
  EXPECT_TRUE(log.empty());
  group.leave();
  EXPECT_TRUE(log.empty());  // posted, not run inline
  loop().runReady();
  DispatchGroup empty;
  empty.notify(main(), note("empty done"));
  loop().runReady();
  EXPECT_EQ(log, (Log{"done", "empty done"}));
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
  int mismatches = 0;
  std::string first;
  for (int ms = 0; ms <= 10000; ++ms) {
    auto converted = secondsToDuration(ms / 1000.0);
    if (converted == std::chrono::milliseconds(ms)) continue;
    if (mismatches++ == 0) first = std::to_string(ms) + " ms became " + std::to_string(converted.count()) + " ns";
  }
  EXPECT_EQ(mismatches, 0) << "first: " << first;
  main()->asyncAfter(1001ms, note("timer"));
  loop().advance(secondsToDuration(1.001));
  EXPECT_EQ(log, (Log{"timer"}));
}

TEST_F(SimDispatchTest, SettleRunsDueTasksButTimesOutOnUnreleasedWork) {
  main()->asyncAfter(1s, note("timer"));
  main()->async(note("due"));
  EXPECT_TRUE(loop().settle(10s));  // a pending timer is not outstanding work
  EXPECT_EQ(log, (Log{"due"}));
  auto work = loop().beginOutstandingWork();
  EXPECT_EQ(loop().outstandingWork(), 1u);
  main()->async(note("due again"));
  EXPECT_FALSE(loop().settle(50ms));
  EXPECT_EQ(log, (Log{"due", "due again"}));
  work.reset();
  EXPECT_EQ(loop().outstandingWork(), 0u);
  EXPECT_TRUE(loop().settle(10s));
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
