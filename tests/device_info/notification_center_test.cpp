// The simulated notification centre: delivery by name in the order observers
// were added, observers that end with their token, and the record of posts.
// Removal during a delivery is the base centre's, tested in core.

#include "platforms/sim/sim_notification_center.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vantu {
namespace {

using Lines = std::vector<std::string>;

class Named : public Object {
 public:
  explicit Named(std::string n) : name(std::move(n)) {}
  std::string name;
};

TEST(NotificationCenter, DeliversByNameInOrderUntilTheTokenEnds) {
  auto center = std::make_shared<sim::SimNotificationCenter>();
  Lines log;
  auto observe = [&](std::string name, std::string who) {
    return center->addObserver(name, [&log, who](const Notification& n) {
      auto* named = dynamic_cast<Named*>(n.object.get());
      log.push_back(who + " <- " + n.name + (named ? " " + named->name : ""));
    });
  };
  auto a = observe("ping", "a");
  auto b = observe("pong", "b");
  {
    auto c = observe("ping", "c");
    EXPECT_TRUE(c.active());
    center->post("ping", std::make_shared<Named>("obj"));
    center->post("pong");
    center->post("other");
  }
  center->post("ping");
  EXPECT_EQ(log, (Lines{"a <- ping obj", "c <- ping obj", "b <- pong", "a <- ping"}));
  EXPECT_EQ(center->observerCount(), 2u);

  // Moving a token moves the observation; reset ends it at once.
  log.clear();
  auto moved = std::move(a);
  EXPECT_FALSE(a.active());  // NOLINT(bugprone-use-after-move)
  center->post("ping");
  moved.reset();
  center->post("ping");
  EXPECT_EQ(log, Lines{"a <- ping"});
  EXPECT_EQ(center->observerCount(), 1u);

  auto posted = center->takePosted();
  ASSERT_EQ(posted.size(), 6u);
  EXPECT_EQ(posted[0].name, "ping");
  EXPECT_EQ(posted[0].object.lock(), nullptr);  // the object is not kept alive
  EXPECT_EQ(posted[2].name, "other");
}

TEST(NotificationCenter, ATokenOutlivingItsCentreIsHarmless) {
  ObserverToken token;
  {
    auto center = std::make_shared<sim::SimNotificationCenter>();
    token = center->addObserver("n", [](const Notification&) {});
    EXPECT_EQ(center->observerCount(), 1u);
  }
  EXPECT_TRUE(token.active());
  token.reset();
  EXPECT_FALSE(token.active());
}

}  // namespace
}  // namespace vantu
