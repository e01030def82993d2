// H5Reachability: the connection decision and the flag description for
// each rule, and the notifier on the simulated
// device (registration, the change step, listeners, weak ownership, errors).

#include "vantu/net/h5_reachability.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

#include "tests/support/bridge_test_fixture.h"

namespace vantu {
namespace {

namespace rf = reachability_flag;
using testing_support::Strings;

TEST(ReachabilityDecisions, ConnectionAndDescriptionForEachRule) {
  struct Case {
    ReachabilityFlags flags;
    bool allowsCellular;
    Connection connection;
    const char* description;  // on a device
  };
  const Case cases[] = {
      {0, true, Connection::none, "-- -------"},
      {rf::kReachable | rf::kIsWWAN, true, Connection::cellular, "WR -------"},
      {rf::kReachable | rf::kIsWWAN, false, Connection::none, "WR -------"},
      {rf::kReachable | rf::kTransientConnection | rf::kIsLocalAddress, true, Connection::wifi, "-R -t---l-"},
      {rf::kReachable | rf::kConnectionRequired, true, Connection::none, "-R c------"},
      {rf::kReachable | rf::kConnectionRequired | rf::kConnectionOnTraffic, true, Connection::wifi, "-R c--C---"},
      {rf::kReachable | rf::kConnectionRequired | rf::kConnectionOnDemand, true, Connection::wifi, "-R c---D--"},
      {rf::kReachable | rf::kConnectionRequired | rf::kConnectionOnTraffic | rf::kInterventionRequired, true,
       Connection::none, "-R c-iC---"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.description);
    EXPECT_EQ(connectionForFlags(c.flags, c.allowsCellular), c.connection);
    EXPECT_EQ(describeFlags(c.flags, true), c.description);
  }
}

// --- The monitor on the simulated device.

/// A serial queue that holds its tasks until the test runs them.
class HeldQueue : public SerialQueue {
 public:
  HeldQueue() : SerialQueue("test.reachability") {}
  std::size_t runAll() {
    std::size_t ran = 0;
    for (; !tasks_.empty(); ++ran) {
      auto task = std::move(tasks_.front());
      tasks_.pop_front();
      task();
    }
    return ran;
  }
  std::size_t pending() const { return tasks_.size(); }

 protected:
  void doAsync(Task task) override { tasks_.push_back(std::move(task)); }
  void doAsyncAfter(Duration, Task task) override { tasks_.push_back(std::move(task)); }
  void doSync(Task task) override { task(); }

 private:
  std::deque<Task> tasks_;
};

class ReachabilityMonitorTest : public testing_support::BridgeTestFixture {
 protected:
  std::shared_ptr<H5Reachability> makeMonitor(std::shared_ptr<SerialQueue> queue = nullptr) {
    auto monitor = H5Reachability::makeForInternet(std::move(queue)).value();
    monitor->whenReachable = [this](H5Reachability& r) { events.push_back("reachable " + r.currentReachabilityString()); };
    monitor->whenUnreachable = [this](H5Reachability& r) {
      events.push_back("unreachable " + r.currentReachabilityString());
    };
    return monitor;
  }
  void setNetwork(std::string_view flagsJson) {
    apply(std::string(R"({"device": {"network": {"flags": )") + std::string(flagsJson) + "}}}");
  }
  /// Names of the notifications posted since the last call, marked by whether their object was `monitor`.
  Strings posted(const std::shared_ptr<H5Reachability>& monitor) {
    Strings names;
    for (auto& p : device.notifications().takePosted()) {
      names.push_back(p.name + (p.object.lock() == monitor ? " (monitor)" : " (other)"));
    }
    return names;
  }
  /// Starts `monitor`, runs its initial report (one post) and forgets what it reported.
  void startQuietly(const std::shared_ptr<H5Reachability>& monitor) {
    ASSERT_EQ(monitor->startNotifier(), std::nullopt);
    settle();
    events.clear();
    EXPECT_EQ(device.notifications().takePosted().size(), 1u);
  }

  Strings events;
};

TEST_F(ReachabilityMonitorTest, StartingTwiceRegistersOnceAndStopAllowsARestart) {
  auto monitor = makeMonitor();
  EXPECT_FALSE(monitor->notifierRunning());
  EXPECT_EQ(monitor->startNotifier(), std::nullopt);
  EXPECT_EQ(monitor->startNotifier(), std::nullopt);
  EXPECT_TRUE(monitor->notifierRunning());
  EXPECT_EQ(device.reachability().callbackRegistrations(), 1u);
  EXPECT_EQ(device.reachability().watchingHandles(), 1u);
  EXPECT_EQ(monitor->flags(), rf::kReachable);
  EXPECT_TRUE(events.empty());  // the initial report's listener waits for the main queue
  settle();
  EXPECT_EQ(events, Strings{"reachable WiFi"});

  events.clear();
  monitor->stopNotifier();
  EXPECT_FALSE(monitor->notifierRunning());
  EXPECT_EQ(device.reachability().watchingHandles(), 0u);
  setNetwork(R"(["reachable", "isWWAN"])");
  settle();
  EXPECT_TRUE(events.empty());
  EXPECT_EQ(monitor->flags(), rf::kReachable);  // the last ones seen
  EXPECT_EQ(monitor->connection(), Connection::wifi);
  // A restart registers again and reports the state it finds changed; one that finds the same flags does not.
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  EXPECT_EQ(device.reachability().callbackRegistrations(), 2u);
  settle();
  EXPECT_EQ(events, Strings{"reachable Cellular"});
  monitor->stopNotifier();
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  settle();
  EXPECT_EQ(events, Strings{"reachable Cellular"});
}

TEST_F(ReachabilityMonitorTest, ChangesReachTheListenersOnTheMainQueueAfterTheMonitorsQueue) {
  auto queue = std::make_shared<HeldQueue>();
  auto monitor = makeMonitor(queue);
  startQuietly(monitor);
  setNetwork(R"(["reachable", "isWWAN"])");
  EXPECT_EQ(queue->pending(), 1u);  // the platform callback, on the monitor's queue
  settle();
  EXPECT_TRUE(events.empty());
  EXPECT_EQ(monitor->flags(), rf::kReachable);
  EXPECT_EQ(queue->runAll(), 1u);
  EXPECT_EQ(monitor->flags(), rf::kReachable | rf::kIsWWAN);
  EXPECT_TRUE(events.empty());  // not yet: the listener runs on the main queue
  EXPECT_TRUE(posted(monitor).empty());
  settle();
  EXPECT_EQ(events, Strings{"reachable Cellular"});
  EXPECT_EQ(posted(monitor), Strings{"reachabilityChanged (monitor)"});

  auto change = [&](std::string_view flags) {
    setNetwork(flags);
    queue->runAll();
    settle();
  };
  change("[]");  // losing the network calls the other listener
  EXPECT_EQ(events, (Strings{"reachable Cellular", "unreachable No Connection"}));
  EXPECT_EQ(posted(monitor), Strings{"reachabilityChanged (monitor)"});

  // Refusing cellular makes a cellular link unreachable.
  events.clear();
  monitor->allowsCellularConnection = false;
  change(R"(["reachable", "isWWAN"])");
  EXPECT_EQ(events, Strings{"unreachable No Connection"});
  EXPECT_EQ(posted(monitor), Strings{"reachabilityChanged (monitor)"});
}

TEST_F(ReachabilityMonitorTest, EveryRunningMonitorHearsOfAChangeAndPostsToItsCentre) {
  auto first = makeMonitor();
  auto second = H5Reachability::makeForHostname("example.org").value();
  auto idle = makeMonitor();
  H5Reachability* received = nullptr;
  second->whenReachable = [&](H5Reachability& r) { received = &r; };
  Strings observed;
  auto token = device.notifications().addObserver(
      std::string(kReachabilityChangedNotification), [&](const Notification& n) {
        auto* r = dynamic_cast<H5Reachability*>(n.object.get());
        observed.push_back(r ? r->currentReachabilityString() + (r == first.get() ? " first" : " other") : "none");
      });
  auto otherName = device.notifications().addObserver(std::string(ReachabilityChangedNotification),
                                                      [&](const Notification&) { observed.push_back("other name"); });
  startQuietly(first);
  startQuietly(second);
  observed.clear();
  received = nullptr;

  setNetwork(R"(["reachable", "isWWAN"])");
  settle();
  EXPECT_EQ(events, Strings{"reachable Cellular"});  // `idle` never started
  EXPECT_EQ(received, second.get());
  EXPECT_EQ(observed, (Strings{"Cellular first", "Cellular other"}));
  EXPECT_EQ(device.reachability().targets(), (Strings{"0.0.0.0", "example.org", "0.0.0.0"}));

  // A monitor with its own centre posts there only.
  auto own = std::make_shared<sim::SimNotificationCenter>();
  first->notificationCenter = own;
  setNetwork("[]");
  settle();
  EXPECT_EQ(observed, (Strings{"Cellular first", "Cellular other", "No Connection other"}));
  auto ownPosts = own->takePosted();
  ASSERT_EQ(ownPosts.size(), 1u);
  EXPECT_EQ(ownPosts[0].name, "reachabilityChanged");
}

TEST_F(ReachabilityMonitorTest, AMonitorThatIsGoneIsNotCalledAndStopsWatching) {
  // Gone while its initial listener is still queued on main.
  auto queue = std::make_shared<HeldQueue>();
  auto monitor = makeMonitor(queue);
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  monitor.reset();
  EXPECT_EQ(device.reachability().watchingHandles(), 0u);
  settle();
  EXPECT_TRUE(events.empty());
  EXPECT_TRUE(device.notifications().takePosted().empty());

  // Gone after the change step ran, while its listener waits for main.
  monitor = makeMonitor(queue);
  startQuietly(monitor);
  setNetwork(R"(["reachable", "isWWAN"])");
  ASSERT_EQ(queue->runAll(), 1u);
  monitor.reset();
  settle();
  EXPECT_TRUE(events.empty());
  EXPECT_TRUE(device.notifications().takePosted().empty());

  // Gone before the platform callback queued for it runs.
  monitor = makeMonitor(queue);
  startQuietly(monitor);
  setNetwork("[]");
  EXPECT_EQ(queue->pending(), 1u);
  monitor.reset();
  queue->runAll();
  settle();
  EXPECT_TRUE(events.empty());
}

/// The text queries in one line: the word, then R(eachable), W(WAN) and (Wi-)F(i) or "-".
std::string queries(H5Reachability& m) {
  return m.currentReachabilityString() + (m.isReachable() ? " R" : " -") + (m.isReachableViaWWAN() ? "W" : "-") +
         (m.isReachableViaWiFi() ? "F" : "-");
}

TEST_F(ReachabilityMonitorTest, QueriesFetchTheFlagsWhileNoneAreStored) {
  setNetwork(R"(["reachable", "isWWAN", "isDirect"])");
  auto monitor = makeMonitor();
  EXPECT_EQ(monitor->flags(), std::nullopt);
  EXPECT_EQ(monitor->connection(), Connection::cellular);
  EXPECT_EQ(monitor->flags(), rf::kReachable | rf::kIsWWAN | rf::kIsDirect);
  EXPECT_EQ(monitor->currentReachabilityStatus(), NetworkStatus::reachableViaWWAN);
  EXPECT_EQ(queries(*monitor), "Cellular RW-");
  EXPECT_EQ(monitor->description(), "WR ------d");
  monitor->allowsCellularConnection = false;
  EXPECT_EQ(monitor->currentReachabilityStatus(), NetworkStatus::notReachable);
  EXPECT_EQ(queries(*monitor), "No Connection ---");
  settle();
  EXPECT_TRUE(events.empty());  // fetching is not a change

  // Without a running notifier the stored flags stay as first read.
  setNetwork(R"(["reachable"])");
  EXPECT_EQ(monitor->description(), "WR ------d");
  auto wifi = makeMonitor();
  EXPECT_EQ(wifi->currentReachabilityStatus(), NetworkStatus::reachableViaWiFi);
  EXPECT_EQ(queries(*wifi), "WiFi R-F");

  device.facts().onDevice = false;
  setNetwork(R"(["reachable", "isWWAN"])");
  EXPECT_EQ(makeMonitor()->description(), "XR -------");
}

TEST_F(ReachabilityMonitorTest, FailuresToMakeOrStartGiveTheirErrorsAndAFailedStartUndoesItsRegistration) {
  apply(R"({"device": {"network": {"reachabilityUnavailable": true}}})");
  auto internet = H5Reachability::makeForInternet();
  ASSERT_FALSE(internet.ok());
  EXPECT_EQ(internet.error().description(), "FailedToCreateWithAddress(0.0.0.0:0)");
  auto host = H5Reachability::makeForHostname("example.org");
  ASSERT_FALSE(host.ok());
  EXPECT_EQ(host.error().description(), "FailedToCreateWithHostname(example.org)");
  apply(R"({"device": {"network": {"reachabilityUnavailable": false}}})");

  struct Case {
    const char* name;
    bool sim::SimReachability::*knob;
    ReachabilityError::Kind expected;
  };
  const Case cases[] = {
      {"callback refused", &sim::SimReachability::refuseCallback, ReachabilityError::Kind::UnableToSetCallback},
      {"queue refused", &sim::SimReachability::refuseQueue, ReachabilityError::Kind::UnableToSetDispatchQueue},
      {"flags unknown", &sim::SimReachability::flagsUnknown, ReachabilityError::Kind::UnableToGetInitialFlags},
  };
  auto& service = device.reachability();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    service.*c.knob = true;
    auto monitor = makeMonitor();
    auto error = monitor->startNotifier();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->kind, c.expected);
    EXPECT_FALSE(monitor->notifierRunning());
    EXPECT_EQ(service.attachedCallbacks(), 0u);
    EXPECT_EQ(service.watchingHandles(), 0u);
    service.*c.knob = false;
  }
  // Without flags the queries answer as for no flags.
  service.flagsUnknown = true;
  auto monitor = makeMonitor();
  EXPECT_EQ(monitor->connection(), Connection::none);
  EXPECT_EQ(monitor->description(), "unavailable flags");
  EXPECT_FALSE(monitor->isReachable());
  service.flagsUnknown = false;
  EXPECT_EQ(monitor->connection(), Connection::wifi);
}

}  // namespace
}  // namespace vantu
