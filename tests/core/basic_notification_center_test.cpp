// The thread-safe notification centre.

#include "vantu/platform/basic_notification_center.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>


namespace vantu {
namespace {

using Log = std::vector<std::string>;

TEST(BasicNotificationCenter, DeliversByNameInOrderAndHonoursRemovalDuringDelivery) {
  auto center = std::make_shared<BasicNotificationCenter>();
  Log log;
  ObserverToken second;
  auto first = center->addObserver("n", [&](const Notification& n) {
    log.push_back("first:" + n.name);
    second.reset();  // removed before its turn in this very delivery
  });
  second = center->addObserver("n", [&](const Notification&) { log.push_back("second"); });
  auto third = center->addObserver("n", [&](const Notification&) { log.push_back("third"); });
  auto other = center->addObserver("other", [&](const Notification&) { log.push_back("other"); });
  EXPECT_EQ(center->observerCount(), 4u);
  center->post("n");
  EXPECT_EQ(log, (Log{"first:n", "third"}));
  EXPECT_EQ(center->observerCount(), 3u);
  third.reset();
  log.clear();
  center->post("n");
  EXPECT_EQ(log, (Log{"first:n"}));
}

TEST(BasicNotificationCenter, PostingWhileOtherThreadsAddAndRemoveObservers) {
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
