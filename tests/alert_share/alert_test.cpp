// "showAlert": the order of its checks, the buttons each type shows, and the
// answer that comes when any button is tapped; and the alert model itself.

#include "tests/alert_share/alert_share_fixture.h"
#include "vantu/platform/alert_controller.h"

namespace vantu::testing_support {
namespace {

using AlertBridge = AlertShareFixture;

constexpr std::string_view kNoMessage = "AlertHandler: No message bound in data";
constexpr std::string_view kNoType = "AlertHandler: No alert type string could be bound from data!";
constexpr std::string_view kNoViewController = "AlertHandler: No view controller";

TEST_F(AlertBridge, ChecksMessageThenTypeThenTheScreen) {
  struct Case {
    const char* data;
    const char* screen;
    std::string_view message;
  };
  const Case cases[] = {
      {"{}", "page", kNoMessage},
      {"{}", "", kNoMessage},  // the message comes before the screen
      {R"({"message": 5, "type": "normal"})", "page", kNoMessage},
      {R"({"message": "hi"})", "page", kNoType},
      {R"({"message": "hi"})", "", kNoType},  // so does the type
      {R"({"message": "hi", "type": 1})", "page", kNoType},
      {R"({"message": "hi", "type": "normal"})", "", kNoViewController},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.data) + " from '" + c.screen + "'");
    auto out = call("showAlert", c.data, c.screen);
    EXPECT_EQ(out.answers, Strings{flatError(c.message)});
    EXPECT_TRUE(out.effects.empty());
    // Reported before anything is checked, when there is a delegate to report to.
    EXPECT_EQ(out.reported, std::string_view(c.screen) == "page" ? Strings{"showAlert"} : Strings{});
  }
}

TEST_F(AlertBridge, ShowsTheTitleMessageAndButtonsOfEachType) {
  struct Case {
    const char* data;
    const char* title;
    Strings buttons;
  };
  const Case cases[] = {
      {R"({"message": "m", "type": "custom", "title": "T", "buttons": ["Yes", "No"]})", "T", {"Yes", "No"}},
      {R"({"message": "m", "type": "custom", "buttons": ["One"]})", "", {"One"}},
      {R"({"message": "m", "type": "custom", "buttons": ["Ok", "Ok", ""]})", "", {"Ok", "Ok", ""}},
      {R"({"message": "m", "type": "normal", "title": "T", "buttons": ["Yes", "No"]})", "T", {"Ok"}},
      // Any other type is "normal", deliberately without an error.
      {R"({"message": "m", "type": "Custom", "buttons": ["Yes"]})", "", {"Ok"}},
      // A custom alert without usable buttons falls back to "Ok", so it can be closed.
      {R"({"message": "m", "type": "custom"})", "", {"Ok"}},
      {R"({"message": "m", "type": "custom", "buttons": "Yes"})", "", {"Ok"}},
      {R"({"message": "m", "type": "custom", "buttons": ["Yes", 2]})", "", {"Ok"}},
      {R"({"message": "m", "type": "custom", "buttons": []})", "", {"Ok"}},
      // A title that is not a string is the empty title.
      {R"({"message": "m", "type": "normal", "title": 7})", "", {"Ok"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.data);
    auto out = call("showAlert", c.data);
    EXPECT_TRUE(out.answers.empty());  // nothing until a button is tapped
    auto alert = presentedOn<AlertController>("page");
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), c.title);
    EXPECT_EQ(alert->message(), "m");
    EXPECT_EQ(alert->preferredStyle(), AlertController::Style::Alert);
    Strings titles;
    for (const auto& action : alert->actions()) {
      titles.push_back(action.title());
      EXPECT_EQ(action.style(), AlertAction::Style::Default);
    }
    EXPECT_EQ(titles, c.buttons);

    Array buttons;
    for (const auto& b : c.buttons) buttons.emplace_back(b);
    const Dict presented{{"effect", "present"}, {"on", "page"}, {"presented", "alert"}, {"animated", true},
                         {"alert", Dict{{"title", c.title}, {"message", "m"}, {"buttons", buttons}}}};
    EXPECT_EQ(out.effects, Strings{json::write(presented)});
    alert->dismiss(false);  // make room for the next case
    collect();
  }
}

TEST_F(AlertBridge, TappingAnyButtonAnswersTheSamePayloadAndDismissesTheAlert) {
  const std::string dismissed = R"({"effect":"dismiss","on":"page","presented":"alert","animated":true})";
  for (std::size_t button = 0; button < 3; ++button) {
    SCOPED_TRACE("button " + std::to_string(button));
    call("showAlert", R"({"message": "Pay?", "type": "custom", "buttons": ["Yes", "No", "Later"]})");
    auto alert = presentedOn<AlertController>("page");
    ASSERT_NE(alert, nullptr);
    ASSERT_TRUE(alert->tapAction(button));
    auto out = collect();
    EXPECT_EQ(out.answers, Strings{kSuccessFlag});
    EXPECT_EQ(out.effects, Strings{dismissed});
    EXPECT_EQ(device.screen("page")->presentedViewController(), nullptr);
    EXPECT_EQ(alert->presentingViewController(), nullptr);
    // A dismissed alert cannot be tapped again: no second answer.
    EXPECT_FALSE(alert->tapAction(button));
    EXPECT_TRUE(collect().answers.empty());
  }
}

TEST_F(AlertBridge, TheAnswerOutlivesTheHandlerObject) {
  call("showAlert", R"({"message": "m", "type": "normal"})");
  auto alert = presentedOn<AlertController>("page");
  ASSERT_NE(alert, nullptr);
  registry = BridgeRegistry();  // the container let its handlers go
  alert->tapAction(0);
  EXPECT_EQ(collect().answers, Strings{kSuccessFlag});
}

TEST_F(AlertBridge, ASecondAlertOnABusyScreenIsRefusedByThePlatformAndNeverAnswered) {
  call("showAlert", R"({"message": "first", "type": "normal"})");
  auto first = presentedOn<AlertController>("page");
  auto out = call("showAlert", R"({"message": "second", "type": "normal"})");
  EXPECT_TRUE(out.answers.empty());
  ASSERT_EQ(out.effects.size(), 1u);
  EXPECT_NE(out.effects[0].find(R"("effect":"presentRefused")"), std::string::npos);
  EXPECT_NE(out.effects[0].find(R"("showing":"alert")"), std::string::npos);
  EXPECT_EQ(presentedOn<AlertController>("page"), first);
  first->tapAction(0);
  EXPECT_EQ(collect().answers, Strings{kSuccessFlag});  // the first alert's answer only
}

// The alert model, without a bridge.

class AlertModel : public BridgeTestFixture {};

TEST_F(AlertModel, TapRunsTheHandlerOfThatButtonOnlyWhileTheAlertIsShown) {
  apply(R"({"screens": [{"name": "home"}]})");
  auto alert = std::make_shared<AlertController>("T", "M", AlertController::Style::ActionSheet);
  Strings tapped;
  alert->addAction(AlertAction("Delete", AlertAction::Style::Destructive,
                               [&](const AlertAction& a) { tapped.push_back(a.title()); }));
  alert->addAction(AlertAction("Cancel", AlertAction::Style::Cancel,
                               [&](const AlertAction& a) { tapped.push_back(a.title()); }));
  alert->addAction(AlertAction("Nothing", AlertAction::Style::Default));  // no handler

  EXPECT_FALSE(alert->tapAction(0));  // not shown yet
  device.screen("home")->present(alert, true);
  EXPECT_TRUE(alert->tapAction(1));
  EXPECT_TRUE(alert->tapAction(0));
  EXPECT_TRUE(alert->tapAction(2));
  EXPECT_FALSE(alert->tapAction(3));
  EXPECT_EQ(tapped, (Strings{"Cancel", "Delete"}));
  EXPECT_EQ(alert->actions()[0].style(), AlertAction::Style::Destructive);
  EXPECT_EQ(alert->preferredStyle(), AlertController::Style::ActionSheet);
  // Tapping does not dismiss by itself.
  EXPECT_EQ(device.screen("home")->presentedViewController(), alert);
}

TEST_F(AlertModel, AHandlerMayDismissTheLastReferenceToItsAlert) {
  apply(R"({"screens": [{"name": "home"}]})");
  bool ran = false;
  {
    auto alert = std::make_shared<AlertController>("", "M", AlertController::Style::Alert);
    std::weak_ptr<AlertController> weak = alert;
    alert->addAction(AlertAction("Ok", AlertAction::Style::Default, [weak, &ran](const AlertAction& a) {
      if (auto shown = weak.lock()) shown->dismiss(true);
      ran = a.title() == "Ok";  // the action is still alive after the dismissal
    }));
    device.screen("home")->present(alert, true);
  }
  auto alert = std::dynamic_pointer_cast<AlertController>(device.screen("home")->presentedViewController());
  ASSERT_NE(alert, nullptr);
  std::weak_ptr<AlertController> watch = alert;
  AlertController* raw = alert.get();
  alert.reset();  // the presenter holds the only reference now
  EXPECT_TRUE(raw->tapAction(0));
  EXPECT_TRUE(ran);
  EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace vantu::testing_support
