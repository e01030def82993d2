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
  /// Notes `name` and the virtual time it ran at.
  Task note(std::string name) {
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
  EXPECT_EQ(log, (Log{"main1@0", "serial1@0", "main2", "serial2@0", "posted by main2@0"}));
  EXPECT_FALSE(loop().hasReadyTasks());

  // A group with nothing entered notifies at once, by posting (linux dispatch_test joins groups of work).
  log.clear();
  DispatchGroup empty;
  empty.notify(main(), note("empty done"));
  EXPECT_TRUE(log.empty());
  loop().runReady();
  EXPECT_EQ(log, (Log{"empty done@0"}));
}

TEST_F(SimDispatchTest, TimersRunWhenTheClockReachesThemInDueOrder) {
  auto serial = loop().makeSerialQueue("serial");
  main()->asyncAfter(3s, note("t3"));
  main()->asyncAfter(1s, note("t1a"));
  main()->async(note("now"));
  serial->asyncAfter(2s, note("t2"));
  serial->asyncAfter(1s, note("t1b"));
  main()->asyncAfter(-5s, note("negative"));
  loop().runReady();
  loop().advance(500ms);
  EXPECT_EQ(log, (Log{"now@0", "negative@0"}));
  EXPECT_EQ(loop().nextTimer(), Duration(1s));
  loop().advance(5s);
  EXPECT_EQ(log, (Log{"now@0", "negative@0", "t1a@1000", "t1b@1000", "t2@2000", "t3@3000"}));
  EXPECT_EQ(loop().nextTimer(), std::nullopt);

  // A timer posted by a timer is due relative to its own time.
  log.clear();
  main()->asyncAfter(1s, [this] {
    note("first")();
    main()->asyncAfter(1s, [this] {
      note("second")();
      main()->asyncAfter(2s, note("third"));
      main()->async(note("follow-up"));
    });
  });
  loop().advance(3s);
  EXPECT_EQ(loop().nextTimer(), Duration(9500ms));
  loop().advance(1s);
  EXPECT_EQ(log, (Log{"first@6500", "second@7500", "follow-up@7500", "third@9500"}));
  // 1.001 is just below 1001 ms as a double: truncation would miss a millisecond timer.
  EXPECT_EQ(secondsToDuration(1.001), 1001ms);
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
  EXPECT_EQ(log, (Log{"inline@0", "outer", "nested@0", "after nested", "next@0"}));

  // The worker starts only once the loop runs, so settle is already waiting;
  // its sync blocks until the loop has run the task. (An answer posted to main
  // from a thread is pinned by runtime's page_protocol_test and runner case 03.)
  auto work = loop().beginOutstandingWork();
  std::promise<void> start;
  auto started = start.get_future();
  main()->async([&start] { start.set_value(); });
  std::thread::id syncRanOn;
  std::thread worker([&, work = std::move(work)]() mutable {
    started.wait();
    serial->sync([&] { syncRanOn = std::this_thread::get_id(); });
    work.reset();
  });
  EXPECT_TRUE(loop().settle(10s));
  worker.join();
  EXPECT_EQ(syncRanOn, std::this_thread::get_id());
}

}  // namespace
}  // namespace vantu
