// The thread-safe notification centre and the standard-output console.

#include "platforms/linux/linux_notification_center.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "platforms/linux/linux_platform.h"

namespace vantu::linux_platform {
namespace {

using Log = std::vector<std::string>;

TEST(LinuxNotificationCenter, DeliversByNameInOrderAndHonoursRemovalDuringDelivery) {
  auto center = std::make_shared<LinuxNotificationCenter>();
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

TEST(LinuxNotificationCenter, PostingWhileOtherThreadsAddAndRemoveObservers) {
  auto center = std::make_shared<LinuxNotificationCenter>();
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

TEST(StreamConsole, WritesEachLineWithANewline) {
  std::FILE* file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  StreamConsole console(file);
  console.printLine("first line");
  console.printLine("");
  console.printLine("third");
  std::rewind(file);
  char buffer[64] = {};
  auto got = std::fread(buffer, 1, sizeof buffer - 1, file);
  std::fclose(file);
  EXPECT_EQ(std::string(buffer, got), "first line\n\nthird\n");
}

}  // namespace
}  // namespace vantu::linux_platform
