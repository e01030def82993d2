// H5Reachability: the connection decision and the flag description over
// every combination of the flag bits, and the notifier on the simulated
// device (registration, the change step, listeners, weak ownership, errors).

#include "vantu/net/h5_reachability.h"

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <string>
#include <vector>

#include "tests/support/bridge_test_fixture.h"

namespace vantu {
namespace {

namespace rf = reachability_flag;

// --- Decisions, checked against tables written from the rules.

// The nine bits the decisions look at, in an arbitrary order of our own.
constexpr std::array<ReachabilityFlags, 9> kBits = {
    rf::kReachable,         rf::kConnectionRequired, rf::kConnectionOnTraffic,
    rf::kInterventionRequired, rf::kConnectionOnDemand, rf::kIsWWAN,
    rf::kTransientConnection, rf::kIsLocalAddress,    rf::kIsDirect};

ReachabilityFlags flagsForCombination(unsigned combination) {
  ReachabilityFlags flags = 0;
  for (std::size_t i = 0; i < kBits.size(); ++i) {
    if (combination & (1u << i)) flags |= kBits[i];
  }
  return flags;
}

enum class Cellular { any, allowed, refused };

struct ConnectionRule {
  ReachabilityFlags required;
  ReachabilityFlags forbidden;
  Cellular cellular;
  Connection result;
};

// The first rule that matches decides.
constexpr ConnectionRule kConnectionRules[] = {
    {0, rf::kReachable, Cellular::any, Connection::none},
    {rf::kReachable | rf::kIsWWAN, 0, Cellular::allowed, Connection::cellular},
    {rf::kReachable | rf::kIsWWAN, 0, Cellular::refused, Connection::none},
    {rf::kReachable, rf::kConnectionRequired, Cellular::any, Connection::wifi},
    {rf::kReachable | rf::kConnectionRequired | rf::kConnectionOnTraffic, rf::kInterventionRequired, Cellular::any,
     Connection::wifi},
    {rf::kReachable | rf::kConnectionRequired | rf::kConnectionOnDemand, rf::kInterventionRequired, Cellular::any,
     Connection::wifi},
    {0, 0, Cellular::any, Connection::none},
};

Connection expectedConnection(ReachabilityFlags flags, bool allowsCellular) {
  for (const auto& rule : kConnectionRules) {
    if ((flags & rule.required) != rule.required || (flags & rule.forbidden) != 0) continue;
    if (rule.cellular == Cellular::allowed && !allowsCellular) continue;
    if (rule.cellular == Cellular::refused && allowsCellular) continue;
    return rule.result;
  }
  ADD_FAILURE() << "no rule matched";
  return Connection::none;
}

// Each position of the description: the bit it shows and its letter; the
// first position shows "X" off a device whatever the bit.
struct DescriptionColumn {
  ReachabilityFlags bit;
  char letter;
};
constexpr DescriptionColumn kColumns[] = {
    {rf::kIsWWAN, 'W'},          {rf::kReachable, 'R'},           {0, ' '},
    {rf::kConnectionRequired, 'c'}, {rf::kTransientConnection, 't'}, {rf::kInterventionRequired, 'i'},
    {rf::kConnectionOnTraffic, 'C'}, {rf::kConnectionOnDemand, 'D'}, {rf::kIsLocalAddress, 'l'},
    {rf::kIsDirect, 'd'},
};

std::string expectedDescription(ReachabilityFlags flags, bool onDevice) {
  std::string text;
  for (std::size_t i = 0; i < std::size(kColumns); ++i) {
    const auto& column = kColumns[i];
    if (i == 0 && !onDevice) {
      text += 'X';
    } else if (column.bit == 0) {
      text += column.letter;
    } else {
      text += (flags & column.bit) ? column.letter : '-';
    }
  }
  return text;
}

TEST(ReachabilityDecisions, ConnectionAndDescriptionForEveryCombinationOfTheFlags) {
  std::array<int, 3> seen{};  // none, wifi, cellular
  for (unsigned combination = 0; combination < (1u << kBits.size()); ++combination) {
    auto flags = flagsForCombination(combination);
    for (bool allowsCellular : {true, false}) {
      auto got = connectionForFlags(flags, allowsCellular);
      EXPECT_EQ(got, expectedConnection(flags, allowsCellular)) << "flags 0x" << std::hex << flags << std::dec
                                                                << " cellular allowed " << allowsCellular;
      ++seen[static_cast<int>(got)];
    }
    for (bool onDevice : {true, false}) {
      EXPECT_EQ(describeFlags(flags, onDevice), expectedDescription(flags, onDevice))
          << "flags 0x" << std::hex << flags << std::dec << " on device " << onDevice;
    }
  }
  // Every outcome occurs (the enumeration really covers the rules).
  for (int count : seen) EXPECT_GT(count, 0);
  EXPECT_EQ(connectionForFlags(std::nullopt, true), Connection::none);
  EXPECT_EQ(describeFlags(std::nullopt, false), "unavailable flags");
}

// --- The monitor on the simulated device.

/// A serial queue that holds its tasks until the test runs them.
class HeldQueue : public SerialQueue {
 public:
  HeldQueue() : SerialQueue("test.reachability") {}
  std::size_t runAll() {
    std::size_t ran = 0;
    while (!tasks_.empty()) {
      auto task = std::move(tasks_.front());
      tasks_.pop_front();
      task();
      ++ran;
    }
    return ran;
  }
  std::size_t pending() const { return tasks_.size(); }

 protected:
  void enqueue(Task task) override { tasks_.push_back(std::move(task)); }
  void enqueueAfter(Duration, Task task) override { tasks_.push_back(std::move(task)); }
  void runAndWait(Task task) override { task(); }

 private:
  std::deque<Task> tasks_;
};

class ReachabilityMonitorTest : public testing_support::BridgeTestFixture {
 protected:
  std::shared_ptr<H5Reachability> makeMonitor(std::shared_ptr<SerialQueue> queue = nullptr) {
    auto made = H5Reachability::makeForInternet(std::move(queue));
    EXPECT_TRUE(made.ok());
    if (!made.ok()) return nullptr;
    auto monitor = made.value();
    monitor->whenReachable = [this](H5Reachability& r) { events.push_back("reachable " + r.currentReachabilityString()); };
    monitor->whenUnreachable = [this](H5Reachability& r) {
      events.push_back("unreachable " + r.currentReachabilityString());
    };
    return monitor;
  }
  void setNetwork(std::string_view flagsJson) {
    apply(std::string(R"({"device": {"network": {"flags": )") + std::string(flagsJson) + "}}}");
  }
  /// Names of the notifications posted since the last call, with whether
  /// their object was `monitor`.
  std::vector<std::string> posted(const std::shared_ptr<H5Reachability>& monitor) {
    std::vector<std::string> names;
    for (auto& p : device.notifications().takePosted()) {
      names.push_back(p.name + (p.object.lock() == monitor ? " (monitor)" : " (other)"));
    }
    return names;
  }
  void runMain() { device.dispatch().runReady(); }

  std::vector<std::string> events;
};

using Lines = std::vector<std::string>;

TEST_F(ReachabilityMonitorTest, StartingTwiceRegistersOnceAndReportsTheInitialState) {
  auto monitor = makeMonitor();
  EXPECT_FALSE(monitor->notifierRunning());
  EXPECT_EQ(monitor->flags(), std::nullopt);

  EXPECT_EQ(monitor->startNotifier(), std::nullopt);
  EXPECT_EQ(monitor->startNotifier(), std::nullopt);
  EXPECT_TRUE(monitor->notifierRunning());
  EXPECT_EQ(device.reachability().callbackRegistrations(), 1u);
  EXPECT_EQ(device.reachability().watchingHandles(), 1u);
  EXPECT_EQ(device.reachability().targets(), Lines{"0.0.0.0"});
  EXPECT_EQ(monitor->flags(), rf::kReachable);

  // The initial change step's listener waits for the main queue.
  EXPECT_TRUE(events.empty());
  runMain();
  EXPECT_EQ(events, Lines{"reachable WiFi"});
  EXPECT_EQ(posted(monitor), Lines{"reachabilityChanged (monitor)"});
}

TEST_F(ReachabilityMonitorTest, ChangesReachTheListenersOnTheMainQueueAfterTheMonitorsQueue) {
  auto queue = std::make_shared<HeldQueue>();
  auto monitor = makeMonitor(queue);
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  runMain();
  events.clear();
  posted(monitor);

  setNetwork(R"(["reachable", "isWWAN"])");
  EXPECT_EQ(queue->pending(), 1u);  // the platform callback, on the monitor's queue
  runMain();
  EXPECT_TRUE(events.empty());
  EXPECT_EQ(monitor->flags(), rf::kReachable);

  EXPECT_EQ(queue->runAll(), 1u);
  EXPECT_EQ(monitor->flags(), rf::kReachable | rf::kIsWWAN);
  EXPECT_TRUE(events.empty());  // not yet: the listener runs on the main queue
  EXPECT_TRUE(posted(monitor).empty());
  runMain();
  EXPECT_EQ(events, Lines{"reachable Cellular"});
  EXPECT_EQ(posted(monitor), Lines{"reachabilityChanged (monitor)"});

  // Losing the network calls the other listener.
  setNetwork("[]");
  queue->runAll();
  runMain();
  EXPECT_EQ(events, (Lines{"reachable Cellular", "unreachable No Connection"}));
  EXPECT_EQ(posted(monitor), Lines{"reachabilityChanged (monitor)"});

  // The same flags again are no change.
  setNetwork("0");
  EXPECT_EQ(queue->pending(), 0u);
}

TEST_F(ReachabilityMonitorTest, RefusingCellularMakesACellularLinkUnreachable) {
  auto monitor = makeMonitor();
  monitor->allowsCellularConnection = false;
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  runMain();
  setNetwork(R"(["reachable", "isWWAN"])");
  runMain();
  setNetwork(R"(["reachable", "connectionRequired", "connectionOnTraffic"])");
  runMain();
  EXPECT_EQ(events, (Lines{"reachable WiFi", "unreachable No Connection", "reachable WiFi"}));
  EXPECT_EQ(posted(monitor).size(), 3u);
}

TEST_F(ReachabilityMonitorTest, EveryRunningMonitorHearsOfAChange) {
  auto first = makeMonitor();
  auto second = H5Reachability::makeForHostname("example.org").value();
  auto idle = makeMonitor();
  int secondCalls = 0;
  second->whenReachable = [&](H5Reachability&) { ++secondCalls; };
  ASSERT_EQ(first->startNotifier(), std::nullopt);
  ASSERT_EQ(second->startNotifier(), std::nullopt);
  runMain();
  events.clear();
  secondCalls = 0;
  device.notifications().takePosted();

  setNetwork(R"(["reachable", "isWWAN"])");
  runMain();
  EXPECT_EQ(events, Lines{"reachable Cellular"});  // `idle` never started
  EXPECT_EQ(secondCalls, 1);
  EXPECT_EQ(device.notifications().takePosted().size(), 2u);
  EXPECT_EQ(device.reachability().targets(), (Lines{"0.0.0.0", "example.org", "0.0.0.0"}));
}

TEST_F(ReachabilityMonitorTest, AMonitorThatIsGoneIsNotCalledAndStopsWatching) {
  // Gone before its queued listener runs on the main queue.
  auto queue = std::make_shared<HeldQueue>();
  auto monitor = makeMonitor(queue);
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  monitor.reset();  // the initial listener is still queued on main
  EXPECT_EQ(device.reachability().watchingHandles(), 0u);
  runMain();
  EXPECT_TRUE(events.empty());
  EXPECT_TRUE(device.notifications().takePosted().empty());

  monitor = makeMonitor(queue);
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  runMain();
  ASSERT_EQ(events, Lines{"reachable WiFi"});
  events.clear();
  device.notifications().takePosted();
  setNetwork(R"(["reachable", "isWWAN"])");
  ASSERT_EQ(queue->runAll(), 1u);  // the change step ran; its listener waits for main
  monitor.reset();
  runMain();
  EXPECT_TRUE(events.empty());
  EXPECT_TRUE(device.notifications().takePosted().empty());

  // Gone before the platform callback that was queued for it runs.
  monitor = makeMonitor(queue);
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  runMain();
  events.clear();
  setNetwork("[]");
  EXPECT_EQ(queue->pending(), 1u);
  monitor.reset();
  queue->runAll();
  runMain();
  EXPECT_TRUE(events.empty());
}

TEST_F(ReachabilityMonitorTest, ListenersReceiveTheMonitorAndObserversTheNotification) {
  auto monitor = makeMonitor();
  H5Reachability* received = nullptr;
  monitor->whenReachable = [&](H5Reachability& r) { received = &r; };
  std::vector<std::string> observed;
  auto token = device.notifications().addObserver(
      std::string(kReachabilityChangedNotification), [&](const Notification& n) {
        auto* r = dynamic_cast<H5Reachability*>(n.object.get());
        observed.push_back(r ? r->currentReachabilityString() : "no monitor");
      });
  auto otherName = device.notifications().addObserver(std::string(ReachabilityChangedNotification),
                                                      [&](const Notification&) { observed.push_back("other name"); });
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  runMain();
  EXPECT_EQ(received, monitor.get());
  EXPECT_EQ(observed, Lines{"WiFi"});

  // A monitor with its own centre posts there only.
  auto own = std::make_shared<sim::SimNotificationCenter>();
  monitor->notificationCenter = own;
  setNetwork("[]");
  runMain();
  EXPECT_EQ(observed, Lines{"WiFi"});
  auto ownPosts = own->takePosted();
  ASSERT_EQ(ownPosts.size(), 1u);
  EXPECT_EQ(ownPosts[0].name, "reachabilityChanged");
}

TEST_F(ReachabilityMonitorTest, StopNotifierStopsReportingAndAllowsARestart) {
  auto monitor = makeMonitor();
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  runMain();
  events.clear();
  posted(monitor);

  monitor->stopNotifier();
  EXPECT_FALSE(monitor->notifierRunning());
  EXPECT_EQ(device.reachability().watchingHandles(), 0u);
  setNetwork(R"(["reachable", "isWWAN"])");
  runMain();
  EXPECT_TRUE(events.empty());
  // The stored flags are the last ones seen.
  EXPECT_EQ(monitor->flags(), rf::kReachable);
  EXPECT_EQ(monitor->connection(), Connection::wifi);

  // A restart registers again and reports the state it finds changed.
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  EXPECT_EQ(device.reachability().callbackRegistrations(), 2u);
  runMain();
  EXPECT_EQ(events, Lines{"reachable Cellular"});

  // A restart that finds the same flags reports nothing.
  monitor->stopNotifier();
  ASSERT_EQ(monitor->startNotifier(), std::nullopt);
  runMain();
  EXPECT_EQ(events, Lines{"reachable Cellular"});
}

/// The monitor's text queries in one line: its word, then R(eachable),
/// W(WAN) and (Wi-)F(i) or "-".
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
  runMain();
  EXPECT_TRUE(events.empty());  // fetching is not a change

  // Without a running notifier the stored flags stay as first read.
  setNetwork(R"(["reachable"])");
  EXPECT_EQ(monitor->description(), "WR ------d");
  auto wifi = makeMonitor();
  EXPECT_EQ(wifi->currentReachabilityStatus(), NetworkStatus::reachableViaWiFi);
  EXPECT_EQ(queries(*wifi), "WiFi R-F");

  // Off a device the description starts with X.
  device.facts().onDevice = false;
  setNetwork(R"(["reachable", "isWWAN"])");
  auto simulator = makeMonitor();
  EXPECT_FALSE(simulator->isRunningOnDevice);
  EXPECT_EQ(simulator->description(), "XR -------");
}

TEST_F(ReachabilityMonitorTest, HandlesThatCannotBeMadeGiveTheirErrors) {
  apply(R"({"device": {"network": {"reachabilityUnavailable": true}}})");
  auto internet = H5Reachability::makeForInternet();
  ASSERT_FALSE(internet.ok());
  EXPECT_EQ(internet.error().description(), "FailedToCreateWithAddress(0.0.0.0:0)");

  auto host = H5Reachability::makeForHostname("example.org");
  ASSERT_FALSE(host.ok());
  EXPECT_EQ(host.error().description(), "FailedToCreateWithHostname(example.org)");
}

TEST_F(ReachabilityMonitorTest, AFailedStartUndoesItsRegistration) {
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
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto& service = device.reachability();
    service.*c.knob = true;
    auto monitor = makeMonitor();
    auto error = monitor->startNotifier();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->kind, c.expected);
    EXPECT_FALSE(monitor->notifierRunning());
    EXPECT_EQ(service.attachedCallbacks(), 0u);
    EXPECT_EQ(service.watchingHandles(), 0u);
    setNetwork(R"(["reachable", "isWWAN"])");
    setNetwork(R"(["reachable"])");
    runMain();
    EXPECT_TRUE(events.empty());
    service.*c.knob = false;
  }
  // Without flags the queries answer as for no flags.
  device.reachability().flagsUnknown = true;
  auto monitor = makeMonitor();
  EXPECT_EQ(monitor->connection(), Connection::none);
  EXPECT_EQ(monitor->description(), "unavailable flags");
  EXPECT_FALSE(monitor->isReachable());
  device.reachability().flagsUnknown = false;
  EXPECT_EQ(monitor->connection(), Connection::wifi);
}

}  // namespace
}  // namespace vantu
