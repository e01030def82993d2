// "Bridge Analytics" events: which delegate receives them and what they hold.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/h5_base_handler.h"
#include "vantu/core/h5_data_providers.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {
namespace {

class EventRecorder : public VantuH5Delegate {
 public:
  void trackCustomEventFor(Dict variables, DelegateHandler handler) override {
    events.push_back(std::move(variables));
    if (handler) handler(true, std::nullopt, std::nullopt);
  }
  std::vector<Dict> events;
};

std::string expectedEvent(std::string_view bridge, std::string_view category) {
  return json::write(Dict{{"event", "custom_event"},
                          {"event_action", "Bridge Analytics"},
                          {"event_label", bridge},
                          {"event_label2", "5.6.0"},
                          {"vertical_name", "mini_app"},
                          {"event_category", category}});
}

using TrackDataTest = testing_support::BridgeTestFixture;

TEST_F(TrackDataTest, ReportsOnceToTheNearestDelegateWithinTwoLevels) {
  constexpr int kNone = -1;
  struct Case {
    const char* name;
    int delegateAt;      // levels above the calling screen, or kNone
    int idAt;            // levels above the calling screen, or kNone
    bool plainObjectOnSelf;
    bool noScreen;
    std::optional<std::string> category;  // nullopt: no event expected
  };
  const Case cases[] = {
      {"delegate and id on self", 0, 0, false, false, "app-1"},
      {"delegate on parent, id on grandparent", 1, 2, false, false, "app-1"},
      {"delegate on grandparent, no id", 2, kNone, false, false, ""},
      {"id beyond reach", 2, 3, false, false, ""},
      {"delegate on great-grandparent", 3, 0, false, false, std::nullopt},
      {"plain object on self hides parent's delegate", 1, 0, true, false, std::nullopt},
      {"no delegate on the screens", kNone, 0, false, false, std::nullopt},
      {"no calling screen", 0, 0, false, true, std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto environmentDelegate = std::make_shared<EventRecorder>();
    Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(nullptr, nullptr, environmentDelegate));
    std::vector<std::shared_ptr<ViewController>> levels;
    for (int i = 0; i < 4; ++i) levels.push_back(std::make_shared<ViewController>());
    for (int i = 3; i > 0; --i) levels[i]->addChild(levels[i - 1]);
    auto screenDelegate = std::make_shared<EventRecorder>();
    if (c.delegateAt != kNone) setVH5ViewControllerDelegate(*levels[c.delegateAt], screenDelegate);
    if (c.idAt != kNone) setUniqueAppIdentifier(*levels[c.idAt], "app-1");
    if (c.plainObjectOnSelf) setVH5ViewControllerDelegate(*levels[0], std::make_shared<Object>());

    auto handler = std::make_shared<H5BaseHandler>();
    handler->trackData("someBridge", H5HandlerInputParams(c.noScreen ? nullptr : levels[0], Dict{}, [](const Value&) {}));

    EXPECT_TRUE(environmentDelegate->events.empty());
    if (!c.category) {
      EXPECT_TRUE(screenDelegate->events.empty());
      continue;
    }
    ASSERT_EQ(screenDelegate->events.size(), 1u);
    EXPECT_EQ(json::write(screenDelegate->events[0]), expectedEvent("someBridge", *c.category));
  }
}

}  // namespace
}  // namespace vantu
