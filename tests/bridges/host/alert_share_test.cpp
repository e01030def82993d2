// "showAlert", "vantuShareText" and "vantuShareTextAndImage": the order of
// their checks, what they present, the answers, the sheet's items; the alert
// model and ShareUtil on their own. Runner case 12 pins the plain flows, the
// data URL and failing image forms, and a second presentation on a busy screen.

#include <variant>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/bridges/host/share_util.h"
#include "vantu/platform/activity_view_controller.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/value/base64.h"

namespace vantu::testing_support {
namespace {

const std::string kSuccess = R"({"data":{"success":true}})";
const std::string kGif = "R0lGODlhAgABAIAAAP8AAAAA/ywAAAAAAgABAAACAkQKADs=";  // 2 x 1: red, blue
constexpr std::string_view kBadImage = "ShareTextAndImageHandler: Failed to create image from base 64 string!";

class AlertShare : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    // "page" reports through its parent's delegate.
    apply(R"({"delegates": {"host": {}}, "screens": [
        {"name": "shell", "delegate": "host", "uniqueAppIdentifier": "mini.shop", "children": [{"name": "page"}]},
        {"name": "nav", "kind": "navigation", "children": [{"name": "navPage", "delegate": "host"}]}]})");
    device.takeDelegateCalls();
  }

  template <class T>
  std::shared_ptr<T> presentedOn(std::string_view screen) {
    return std::dynamic_pointer_cast<T>(device.screen(screen)->presentedViewController());
  }
};

TEST_F(AlertShare, ChecksComeInEachBridgesOrder) {
  // The bridge, its data, the screen it is called from and the error it answers.
  const std::tuple<const char*, std::string, const char*, std::string_view> cases[] = {
      // showAlert: the message, then the type, then the screen.
      {"showAlert", "{}", "", "AlertHandler: No message bound in data"},
      {"showAlert", R"({"message": "hi"})", "", "AlertHandler: No alert type string could be bound from data!"},
      // vantuShareText: the text before the screen.
      {"vantuShareText", "{}", "", "SharePostHandler: Invalid text parameter!"},
      {"vantuShareText", R"({"text": "hi"})", "", "Unable to get current H5 Context"},
      // vantuShareTextAndImage: the screen first.
      {"vantuShareTextAndImage", "{}", "", "ShareTextAndImageHandler: Unable to get current H5 Context"},
      {"vantuShareTextAndImage", R"({"text": 1, "image": 2})", "page",
       "ShareTextAndImageHandler: Neither text not image base 64 passed!"},
      // An empty image fails; a non-string text is absent.
      {"vantuShareTextAndImage", R"({"image": ""})", "page", kBadImage},
      {"vantuShareTextAndImage", R"({"text": 5, "image": "@@@"})", "page", kBadImage},
  };
  for (const auto& [bridge, data, screen, message] : cases) {
    SCOPED_TRACE(std::string(bridge) + " " + data + " from '" + screen + "'");
    auto out = call(bridge, data, screen);
    EXPECT_EQ(out.answers, Strings{flatError(message)});
    EXPECT_TRUE(out.effects.empty());
    // Reported before anything is checked, when there is a delegate to report to.
    EXPECT_EQ(out.reported, *screen ? Strings{bridge} : Strings{});
  }
}

// Each alert is answered when its last button is tapped, goes away and is
// freed (the handler holds it weakly), even when the tap drops its last reference.
TEST_F(AlertShare, AlertShowsTheTitleMessageAndButtonsOfEachTypeAndAnswersATap) {
  // The data, then the alert's title and buttons.
  const std::tuple<const char*, const char*, Strings> cases[] = {
      {R"({"message": "m", "type": "custom", "buttons": ["Ok", "Ok", "Later"]})", "", {"Ok", "Ok", "Later"}},
      // Any other type is "normal", without an error.
      {R"({"message": "m", "type": "Custom", "title": "T", "buttons": ["Yes"]})", "T", {"Ok"}},
      // A custom alert without usable buttons falls back to "Ok", so it can be closed.
      {R"({"message": "m", "type": "custom", "buttons": ["Yes", 2]})", "", {"Ok"}},
      {R"({"message": "m", "type": "custom", "buttons": []})", "", {"Ok"}},
      {R"({"message": "m", "type": "normal", "title": 7})", "", {"Ok"}},  // a non-string title is empty
  };
  for (const auto& c : cases) {
    const auto& [data, title, titles] = c;
    SCOPED_TRACE(data);
    auto out = call("showAlert", data);
    EXPECT_TRUE(out.answers.empty());  // nothing until a button is tapped
    Array buttons(titles.begin(), titles.end());
    EXPECT_EQ(out.effects, Strings{json::write(Dict{{"effect", "present"}, {"on", "page"}, {"presented", "alert"},
                                                    {"animated", true},
                                                    {"alert", Dict{{"title", title}, {"message", "m"}, {"buttons", buttons}}}})});
    auto alert = presentedOn<AlertController>("page");
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->preferredStyle(), AlertController::Style::Alert);
    for (const auto& action : alert->actions()) EXPECT_EQ(action.style(), AlertAction::Style::Default);
    if (&c == std::end(cases) - 1) registry = BridgeRegistry();  // the answer outlives the handler object
    std::weak_ptr<AlertController> watch = alert;
    AlertController* raw = alert.get();
    alert.reset();  // the presenter holds the only reference now
    ASSERT_TRUE(raw->tapAction(titles.size() - 1));
    out = collect();
    EXPECT_EQ(out.answers, Strings{kSuccess});
    EXPECT_EQ(out.effects, Strings{R"({"effect":"dismiss","on":"page","presented":"alert","animated":true})"});
    EXPECT_EQ(device.screen("page")->presentedViewController(), nullptr);
    EXPECT_TRUE(watch.expired());
  }
}

TEST_F(AlertShare, AlertModelRunsTheTappedHandlerOnlyWhileShown) {
  auto alert = std::make_shared<AlertController>("T", "M", AlertController::Style::ActionSheet);
  Strings tapped;
  alert->addAction(AlertAction("Delete", AlertAction::Style::Destructive,
                               [&](const AlertAction& a) { tapped.push_back(a.title()); }));
  alert->addAction(AlertAction("Nothing", AlertAction::Style::Default));  // no handler
  EXPECT_FALSE(alert->tapAction(0));  // not shown yet
  device.screen("page")->present(alert, true);
  EXPECT_TRUE(alert->tapAction(1));
  EXPECT_TRUE(alert->tapAction(0));
  EXPECT_FALSE(alert->tapAction(2));
  EXPECT_EQ(tapped, Strings{"Delete"});
  EXPECT_EQ(device.screen("page")->presentedViewController(), alert);  // tapping does not dismiss
}

TEST_F(AlertShare, SharesTextThenImageFromBase64WithUnknownCharacters) {
  std::string spread;  // the Base64 text with unknown characters between
  for (std::size_t i = 0; i < kGif.size(); ++i) spread += kGif[i] + std::string(i % 10 == 9 ? "\r\n" : i % 17 == 3 ? " *" : "");
  const std::string image = R"("image":{"width":2,"height":1}})";
  const std::tuple<const char*, Dict, const char*, std::string> cases[] = {
      // An empty text is still a text; vantuShareText ignores an image, the other a non-string one.
      {"vantuShareText", Dict{{"text", ""}, {"image", "ignored"}}, "navPage", R"({"text":"","image":null})"},
      {"vantuShareTextAndImage", Dict{{"text", "hi"}, {"image", 42}}, "page", R"({"text":"hi","image":null})"},
      {"vantuShareTextAndImage", Dict{{"text", "t"}, {"image", spread}}, "page", R"({"text":"t",)" + image},
  };
  for (const auto& [bridge, data, screen, share] : cases) {
    SCOPED_TRACE(json::write(data));
    auto out = call(bridge, data, screen);
    EXPECT_EQ(out.answers, Strings{kSuccess});
    EXPECT_EQ(out.reported, Strings{bridge});
    EXPECT_EQ(out.effects, Strings{R"({"effect":"present","on":")" + std::string(screen) +
                                   R"(","presented":"shareSheet","animated":true,"share":)" + share + "}"});
    // The sheet's items: the text, then the decoded pixels when there is an image.
    auto sheet = presentedOn<ActivityViewController>(screen);
    ASSERT_NE(sheet, nullptr);
    const auto& items = sheet->activityItems();
    const bool withImage = share.ends_with(image);
    ASSERT_EQ(items.size(), withImage ? 2u : 1u);
    EXPECT_EQ(std::get<std::string>(items[0]), *data.getString("text"));
    if (withImage) {
      EXPECT_EQ(std::get<Image>(items[1]).bytes, (std::vector<std::uint8_t>{255, 0, 0, 255, 0, 0, 255, 255}));
    }
    device.screen(screen)->dismiss(true);
    collect();
  }
}

TEST_F(AlertShare, ShareUtilWithNothingToShareAnswersInsideData) {
  Strings answers;
  ShareUtil::share(std::nullopt, std::nullopt, *device.screen("page"),
                   [&](const Value& answer) { answers.push_back(json::write(answer)); });
  EXPECT_EQ(answers,
            Strings{R"({"data":{"success":false,"error":"ShareTextAndImageHandler: Text and image both found nil"}})"});
  EXPECT_EQ(device.screen("page")->presentedViewController(), nullptr);
  EXPECT_TRUE(collect().effects.empty());
}

}  // namespace
}  // namespace vantu::testing_support
