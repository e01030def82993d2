// The thread-safe notification centre, its observer tokens, and the simulated
// device's record of posts.

#include "platforms/common/basic_notification_center.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platforms/sim/sim_notification_center.h"

namespace vantu {
namespace {

using Log = std::vector<std::string>;

class Named : public Object {
 public:
  explicit Named(std::string n) : name(std::move(n)) {}
  std::string name;
};

TEST(NotificationCenter, DeliversByNameInOrderUntilTheTokenEndsEvenDuringADelivery) {
  auto center = std::make_shared<sim::SimNotificationCenter>();
  Log log;
  ObserverToken second;
  auto observe = [&](std::string name, std::string who) {
    return center->addObserver(name, [&log, &second, who](const Notification& n) {
      auto* named = dynamic_cast<Named*>(n.object.get());
      log.push_back(who + " <- " + n.name + (named ? " " + named->name : ""));
      if (who == "first") second.reset();  // removed before its turn in this very delivery
    });
  };
  auto first = observe("n", "first");
  second = observe("n", "second");
  auto other = observe("other", "other");
  {
    auto scoped = observe("n", "scoped");
    EXPECT_EQ(center->observerCount(), 4u);
    center->post("n", std::make_shared<Named>("obj"));
  }
  EXPECT_EQ(log, (Log{"first <- n obj", "scoped <- n obj"}));
  EXPECT_EQ(center->observerCount(), 2u);

  // Moving a token moves the observation; reset ends it at once.
  log.clear();
  auto moved = std::move(first);
  EXPECT_FALSE(first.active());  // NOLINT(bugprone-use-after-move)
  center->post("n");
  moved.reset();
  center->post("n");
  EXPECT_EQ(log, Log{"first <- n"});
  EXPECT_EQ(center->observerCount(), 1u);
  // The record of posts (read by device_info's reachability_test) does not keep the object alive.
  auto posted = center->takePosted();
  ASSERT_EQ(posted.size(), 3u);
  EXPECT_EQ(posted[0].object.lock(), nullptr);
}

TEST(NotificationCenter, ATokenOutlivingItsCentreIsHarmless) {
  ObserverToken token;
  {
    auto center = std::make_shared<BasicNotificationCenter>();
    token = center->addObserver("n", [](const Notification&) {});
  }
  EXPECT_TRUE(token.active());
  token.reset();
  EXPECT_FALSE(token.active());
}

TEST(NotificationCenter, PostingWhileOtherThreadsAddAndRemoveObservers) {
  auto center = std::make_shared<BasicNotificationCenter>();
  std::atomic<int> steady{0};
  auto token = center->addObserver("n", [&](const Notification&) { ++steady; });
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 300; ++i) {
        auto passing = center->addObserver("n", [](const Notification&) {});
        center->post("n");
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(steady, 900);
  EXPECT_EQ(center->observerCount(), 1u);
}

}  // namespace
}  // namespace vantu
