// "showAlert", "vantuShareText" and "vantuShareTextAndImage": the order of
// their checks, what they present, the answers, the image forms a page may
// send; the alert model and ShareUtil on their own. Runner case 12 pins the
// plain flows and a second presentation on a busy screen.

#include <variant>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/bridges/host/share_util.h"
#include "vantu/platform/activity_view_controller.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/value/base64.h"

namespace vantu::testing_support {
namespace {

using Bytes = std::vector<std::uint8_t>;
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

  /// The items of the share sheet on `screen`, in order: "text:..." or "image:WxH".
  Strings sharedItems(std::string_view screen = "page") {
    auto sheet = presentedOn<ActivityViewController>(screen);
    if (!sheet) return {"<no share sheet>"};
    Strings items;
    for (const auto& item : sheet->activityItems()) {
      const auto* image = std::get_if<Image>(&item);
      items.push_back(image ? "image:" + std::to_string(int(image->size.width)) + "x" + std::to_string(int(image->size.height))
                            : "text:" + std::get<std::string>(item));
    }
    return items;
  }
};

TEST_F(AlertShare, ChecksComeInEachBridgesOrder) {
  struct Case {
    const char* bridge;
    std::string data;
    const char* screen;
    std::string_view message;
  };
  const std::string_view noMessage = "AlertHandler: No message bound in data",
                         noType = "AlertHandler: No alert type string could be bound from data!",
                         invalidText = "SharePostHandler: Invalid text parameter!",
                         noContext = "ShareTextAndImageHandler: Unable to get current H5 Context",
                         nothing = "ShareTextAndImageHandler: Neither text not image base 64 passed!";
  const Case cases[] = {
      // showAlert: the message, then the type, then the screen.
      {"showAlert", "{}", "", noMessage},
      {"showAlert", R"({"message": 5, "type": "normal"})", "page", noMessage},
      {"showAlert", R"({"message": "hi"})", "", noType},
      {"showAlert", R"({"message": "hi", "type": 1})", "page", noType},
      {"showAlert", R"({"message": "hi", "type": "normal"})", "", "AlertHandler: No view controller"},
      // vantuShareText: the text before the screen.
      {"vantuShareText", "{}", "", invalidText},
      {"vantuShareText", R"({"text": 12})", "page", invalidText},
      {"vantuShareText", R"({"text": "hi"})", "", "Unable to get current H5 Context"},
      // vantuShareTextAndImage: the screen first.
      {"vantuShareTextAndImage", "{}", "", noContext},
      {"vantuShareTextAndImage", R"({"image": ")" + kGif + R"("})", "", noContext},
      {"vantuShareTextAndImage", "{}", "page", nothing},
      {"vantuShareTextAndImage", R"({"text": 1, "image": 2})", "page", nothing},
      {"vantuShareTextAndImage", R"({"image": ""})", "page", kBadImage},
      {"vantuShareTextAndImage", R"({"image": "bm90IGFuIGltYWdl"})", "page", kBadImage},  // "not an image"
      // An image that fails is not dropped for the text; a non-string text is absent.
      {"vantuShareTextAndImage", R"({"text": "hi", "image": "@@@"})", "page", kBadImage},
      {"vantuShareTextAndImage", R"({"text": 5, "image": "@@@"})", "page", kBadImage},
      // "data:image" anywhere makes a URL, here one that loads nothing; a data URL that is no URL.
      {"vantuShareTextAndImage", R"({"text": "t", "image": ")" + kGif + R"(data:image"})", "page", kBadImage},
      {"vantuShareTextAndImage", R"({"text": "t", "image": "data:image/gif"})", "page", kBadImage},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.bridge) + " " + c.data + " from '" + c.screen + "'");
    auto out = call(c.bridge, c.data, c.screen);
    EXPECT_EQ(out.answers, Strings{flatError(c.message)});
    EXPECT_TRUE(out.effects.empty());
    // Reported before anything is checked, when there is a delegate to report to.
    EXPECT_EQ(out.reported, *c.screen ? Strings{c.bridge} : Strings{});
  }
}

// Each alert is answered, once, when its last button is tapped, and goes away.
TEST_F(AlertShare, AlertShowsTheTitleMessageAndButtonsOfEachTypeAndAnswersATap) {
  struct Case {
    const char* data;
    const char* title;
    Strings buttons;
  };
  const Case cases[] = {
      {R"({"message": "m", "type": "custom", "title": "T", "buttons": ["Yes", "No"]})", "T", {"Yes", "No"}},
      {R"({"message": "m", "type": "custom", "buttons": ["Ok", "Ok", "Later"]})", "", {"Ok", "Ok", "Later"}},
      {R"({"message": "m", "type": "custom", "buttons": [""]})", "", {""}},
      {R"({"message": "m", "type": "normal", "title": "T", "buttons": ["Yes", "No"]})", "T", {"Ok"}},
      // Any other type is "normal", without an error.
      {R"({"message": "m", "type": "Custom", "buttons": ["Yes"]})", "", {"Ok"}},
      // A custom alert without usable buttons falls back to "Ok", so it can be closed.
      {R"({"message": "m", "type": "custom"})", "", {"Ok"}},
      {R"({"message": "m", "type": "custom", "buttons": "Yes"})", "", {"Ok"}},
      {R"({"message": "m", "type": "custom", "buttons": ["Yes", 2]})", "", {"Ok"}},
      {R"({"message": "m", "type": "custom", "buttons": []})", "", {"Ok"}},
      {R"({"message": "m", "type": "normal", "title": 7})", "", {"Ok"}},  // a non-string title is empty
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.data);
    auto out = call("showAlert", c.data);
    EXPECT_TRUE(out.answers.empty());  // nothing until a button is tapped
    Array buttons(c.buttons.begin(), c.buttons.end());
    EXPECT_EQ(out.effects, Strings{json::write(Dict{{"effect", "present"}, {"on", "page"}, {"presented", "alert"},
                                                    {"animated", true},
                                                    {"alert", Dict{{"title", c.title}, {"message", "m"}, {"buttons", buttons}}}})});
    auto alert = presentedOn<AlertController>("page");
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->preferredStyle(), AlertController::Style::Alert);
    for (const auto& action : alert->actions()) EXPECT_EQ(action.style(), AlertAction::Style::Default);
    if (&c == std::end(cases) - 1) registry = BridgeRegistry();  // the answer outlives the handler object
    ASSERT_TRUE(alert->tapAction(c.buttons.size() - 1));
    out = collect();
    EXPECT_EQ(out.answers, Strings{kSuccess});
    EXPECT_EQ(out.effects, Strings{R"({"effect":"dismiss","on":"page","presented":"alert","animated":true})"});
    EXPECT_EQ(device.screen("page")->presentedViewController(), nullptr);
    EXPECT_EQ(alert->presentingViewController(), nullptr);
    EXPECT_FALSE(alert->tapAction(0));  // a dismissed alert: no second answer
    EXPECT_TRUE(collect().answers.empty());
  }
}

TEST_F(AlertShare, AlertModelRunsTheTappedHandlerOnlyWhileShown) {
  auto alert = std::make_shared<AlertController>("T", "M", AlertController::Style::ActionSheet);
  Strings tapped;
  auto record = [&](const AlertAction& a) { tapped.push_back(a.title()); };
  alert->addAction(AlertAction("Delete", AlertAction::Style::Destructive, record));
  alert->addAction(AlertAction("Cancel", AlertAction::Style::Cancel, record));
  alert->addAction(AlertAction("Nothing", AlertAction::Style::Default));  // no handler
  EXPECT_FALSE(alert->tapAction(0));  // not shown yet
  device.screen("page")->present(alert, true);
  EXPECT_TRUE(alert->tapAction(1));
  EXPECT_TRUE(alert->tapAction(0));
  EXPECT_TRUE(alert->tapAction(2));
  EXPECT_FALSE(alert->tapAction(3));
  EXPECT_EQ(tapped, (Strings{"Cancel", "Delete"}));
  EXPECT_EQ(device.screen("page")->presentedViewController(), alert);  // tapping does not dismiss
}

TEST_F(AlertShare, AlertHandlerMayDismissTheLastReferenceToItsAlert) {
  bool ran = false;
  {
    auto alert = std::make_shared<AlertController>("", "M", AlertController::Style::Alert);
    std::weak_ptr<AlertController> weak = alert;
    alert->addAction(AlertAction("Ok", AlertAction::Style::Default, [weak, &ran](const AlertAction& a) {
      if (auto shown = weak.lock()) shown->dismiss(true);
      ran = a.title() == "Ok";  // the action is still alive after the dismissal
    }));
    device.screen("page")->present(alert, true);
  }
  auto alert = presentedOn<AlertController>("page");
  ASSERT_NE(alert, nullptr);
  std::weak_ptr<AlertController> watch = alert;
  AlertController* raw = alert.get();
  alert.reset();  // the presenter holds the only reference now
  EXPECT_TRUE(raw->tapAction(0));
  EXPECT_TRUE(ran);
  EXPECT_TRUE(watch.expired());
}

TEST_F(AlertShare, SharesTextImageOrBothInThatOrderFromEveryImageForm) {
  const Bytes gif = *base64::decode(kGif);
  std::string escaped, spread;  // every byte percent-escaped; the Base64 text with unknown characters between
  for (std::uint8_t b : gif) escaped += "%" + std::string{"0123456789ABCDEF"[b >> 4], "0123456789ABCDEF"[b & 15]};
  for (std::size_t i = 0; i < kGif.size(); ++i) spread += kGif[i] + std::string(i % 10 == 9 ? "\r\n" : i % 17 == 3 ? " *" : "");
  struct Case {
    const char* bridge;
    Dict data;
    const char* screen;
    Strings items;
    std::string share;  // the effect's "share" value
  };
  const char* both = "vantuShareTextAndImage";
  const std::string image = R"("image":{"width":2,"height":1}})";
  std::vector<Case> cases = {
      // An empty text is still a text; vantuShareText ignores an image.
      {"vantuShareText", Dict{{"text", ""}, {"image", "ignored"}}, "navPage", {"text:"}, R"({"text":"","image":null})"},
      {both, Dict{{"text", "hi"}, {"image", 42}}, "page", {"text:hi"}, R"({"text":"hi","image":null})"},
      {both, Dict{{"image", kGif}}, "page", {"image:2x1"}, R"({"text":null,)" + image},
  };
  // The image as Base64, or as a data URL of either form whose media type is not checked: the bytes decide.
  for (const std::string& form : {kGif, spread, "data:image/gif;base64," + kGif, "data:image/gif," + escaped,
                                  "data:image/png;base64," + kGif}) {
    cases.push_back({both, Dict{{"text", "t"}, {"image", form}}, "page", {"text:t", "image:2x1"}, R"({"text":"t",)" + image});
  }
  for (const auto& c : cases) {
    SCOPED_TRACE(json::write(c.data));
    auto out = call(c.bridge, c.data, c.screen);
    EXPECT_EQ(out.answers, Strings{kSuccess});
    EXPECT_EQ(out.reported, Strings{c.bridge});
    EXPECT_EQ(sharedItems(c.screen), c.items);
    EXPECT_EQ(out.effects, Strings{R"({"effect":"present","on":")" + std::string(c.screen) +
                                   R"(","presented":"shareSheet","animated":true,"share":)" + c.share + "}"});
    if (c.items.back() == "image:2x1") {  // the decoded pixels
      auto sheet = presentedOn<ActivityViewController>(c.screen);
      EXPECT_EQ(std::get<Image>(sheet->activityItems().back()).bytes, (Bytes{255, 0, 0, 255, 0, 0, 255, 255}));
    }
    device.screen(c.screen)->dismiss(true);
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
