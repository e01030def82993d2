// The web-view customiser's printed lines and settings, the "vantuChangeWebSetting" bridge, and the
// keyboard-offset fixer on virtual time and attached to a screen.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/container/vantu_h5_web_view_customizer.h"
#include "vantu/container/web_view_keyboard_offset_fixer.h"
#include "vantu/container/web_view_settings_customization_handler.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/platform/keyboard_notifications.h"
#include "vantu/runtime/bridge_registry.h"

namespace vantu {
namespace {

using Lines = std::vector<std::string>;
using testing_support::flatError;

constexpr const char* kNotSupported = "This feature is not supported by this version of Keglib";
constexpr const char* kInsetNotInteger = "Failed to apply contentInsetAdjustmentBehavior; the value passed is not an integer";
constexpr const char* kDismissNotInteger = "Failed to apply keyboardDismissMode; the value passed is not an integer";

using WebViewCustomizerTest = testing_support::BridgeTestFixture;

TEST_F(WebViewCustomizerTest, PrintsOneLinePerRejectedFlagAndAppliesTheRest) {
  const struct {
    const char *flags, *systemVersion;
    Lines printed;
    std::optional<std::int64_t> inset, dismiss;
  } cases[] = {
      // Runner case 14 pins the plain applied, unsupported, old-system and string cases.
      {R"({"contentInsetAdjustmentBehavior": 2.0})", "17.5", {kInsetNotInteger}, {}, {}},
      {R"({"contentInsetAdjustmentBehavior": true})", "17.5", {kInsetNotInteger}, {}, {}},
      {R"({"contentInsetAdjustmentBehavior": -7})", "17.5", {}, -7, {}},  // passed through unchecked
      {R"({"contentInsetAdjustmentBehavior": "3"})", "10.3", {kInsetNotInteger}, {}, {}},  // the type comes first
      {R"({"keyboardDismissMode": 1})", "10.3", {}, {}, 1},  // no version gate
      {R"({"KeyboardDismissMode": 1})", "17.5", {"Failed to apply unmapped key: KeyboardDismissMode"}, {}, {}},
      {R"({"zoom": 1, "keyboardDismissMode": 2.5, "allowsInlineMediaPlayback": 0, "contentInsetAdjustmentBehavior": 1,
           "": 0})",
       "17.5",
       {"Failed to apply unmapped key: zoom", kDismissNotInteger, kNotSupported, "Failed to apply unmapped key: "},
       1,
       {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.flags) + " on " + c.systemVersion);
    device.facts().osVersionText = c.systemVersion;
    auto web = WebView::make();
    VantuH5WebViewCustomizer::customize(web, dataOf(c.flags));
    EXPECT_EQ(device.takePrintedLines(), c.printed);
    EXPECT_EQ(web->scrollView()->contentInsetAdjustmentBehavior(), c.inset);
    EXPECT_EQ(web->scrollView()->keyboardDismissMode(), c.dismiss);
  }

  // Non-string keys are unmapped and named by their text.
  auto webView = WebView::make();
  VantuH5WebViewCustomizer::customize(webView, Dict{{7, 1}, {"keyboardDismissMode", 4}, {true, 1}});
  EXPECT_EQ(device.takePrintedLines(),
            (Lines{"Failed to apply unmapped key: 7", "Failed to apply unmapped key: true"}));
  EXPECT_EQ(webView->scrollView()->keyboardDismissMode(), 4);

  // Something other than a web view gets the diagnostics but no settings.
  auto scrollView = std::make_shared<ScrollView>();
  const Dict flags =
      dataOf(R"({"contentInsetAdjustmentBehavior": 2, "keyboardDismissMode": "x", "keyboardDismissMode2": 1})");
  const Lines printed{kDismissNotInteger, "Failed to apply unmapped key: keyboardDismissMode2"};
  for (const std::shared_ptr<Object>& target : {std::shared_ptr<Object>(scrollView), std::shared_ptr<Object>()}) {
    VantuH5WebViewCustomizer::customize(target, flags);
    EXPECT_EQ(device.takePrintedLines(), printed);
  }
  EXPECT_EQ(scrollView->contentInsetAdjustmentBehavior(), std::nullopt);
}

class WebSettingBridgeTest : public testing_support::BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({
      "delegates": {"host": {}},
      "screens": [
        {"name": "page", "delegate": "host", "uniqueAppIdentifier": "page.app",
         "view": {"subviews": [{"kind": "view", "name": "page.header"}, {"kind": "webView", "name": "page.web"},
                               {"kind": "webView", "name": "page.web2"}]}},
        {"name": "parent", "children": [{"name": "child", "view": {"subviews": [{"kind": "webView", "name": "child.web"}]}}]}
      ]})");
  }
  std::optional<std::int64_t> dismissModeOf(const char* scrollView) {
    return std::dynamic_pointer_cast<ScrollView>(device.findView(scrollView))->keyboardDismissMode();
  }
};

TEST_F(WebSettingBridgeTest, ChecksTheCallInOrderThenAppliesTheWholeDataToTheFirstWebView) {
  const struct {
    const char* screen;
    Dict data;
    std::string message;
  } refusals[] = {
      {"", Dict{{7, 1}}, "Unable to get current H5 Context"},
      {"parent", Dict{{7, 1}}, "Unable to get webview"},  // a child screen's web view is not used
      {"page", Dict{{"keyboardDismissMode", 1}, {7, 1}}, "Typecast of [AnyHashable : Any] to [String:Any] failed!"},
  };
  for (const auto& c : refusals) {
    SCOPED_TRACE(std::string(c.screen) + " " + json::write(Value(c.data)));
    auto out = call("vantuChangeWebSetting", c.data, c.screen);
    EXPECT_EQ(out.answers, Lines{flatError("WebViewSettingsCustomizationHandler: " + c.message)});
    // Reported before anything is checked, when there is a delegate to report to.
    EXPECT_EQ(out.reported, std::string(c.screen) == "page" ? Lines{"vantuChangeWebSetting"} : Lines{});
    EXPECT_EQ(device.takePrintedLines(), Lines{});
    EXPECT_EQ(out.effects, Lines{});
  }

  // The first web view among the subviews gets the data; the answer is true despite rejected flags (runner case 14
  // pins the printed lines and the effect).
  EXPECT_EQ(call("vantuChangeWebSetting", Dict{{"keyboardDismissMode", 2}, {"zoom", 1}}, "page").answers,
            Lines{"true"});
  EXPECT_EQ(device.takePrintedLines(), Lines{"Failed to apply unmapped key: zoom"});
  EXPECT_EQ(dismissModeOf("page.web.scrollView"), 2);
  EXPECT_EQ(dismissModeOf("page.web2.scrollView"), std::nullopt);
}

// --- The keyboard-offset fixer.

class KeyboardOffsetFixerTest : public testing_support::BridgeTestFixture {
 protected:
  /// The keyboard is announced, then the platform scrolls the focused field into view.
  void show(Point scrolledTo) {
    device.notifications().post(kKeyboardWillShowNotification);
    scrollView->setContentOffset(scrolledTo, true);
  }
  void hide() { device.notifications().post(kKeyboardWillHideNotification); }
  void advance(double seconds) { device.dispatch().advance(secondsToDuration(seconds)); }
  Point offset() const { return scrollView->contentOffset(); }

  std::shared_ptr<WebView> webView = WebView::make({0, 0, 390, 800});
  std::shared_ptr<ScrollView> scrollView = webView->scrollView();
};

TEST_F(KeyboardOffsetFixerTest, RestoresTheOffsetSavedAtShowTwoTenthsOfASecondAfterEachHide) {
  auto before = device.notifications().observerCount();
  auto fixer = WebViewKeyboardOffsetFixer::make(webView);
  EXPECT_EQ(device.notifications().observerCount(), before + 2);
  scrollView->setContentOffset({0, 120});
  show({0, 480});
  hide();
  EXPECT_TRUE(fixer->shiftingInProgress());
  advance(0.199);
  EXPECT_EQ(offset(), (Point{0, 480}));
  advance(0.001);
  EXPECT_EQ(offset(), (Point{0, 120}));
  EXPECT_FALSE(scrollView->lastOffsetChangeAnimated());
  EXPECT_FALSE(fixer->shiftingInProgress());

  // Idle again: the next show saves afresh. (A show while a restore is pending is pinned by runner case 14.)
  scrollView->setContentOffset({5, 600});
  show({5, 900});
  // Two hides each schedule a restore.
  hide();
  advance(0.1);
  hide();
  advance(0.1);  // the first restore: offset back, not shifting any more
  EXPECT_EQ(offset(), (Point{5, 600}));
  EXPECT_FALSE(fixer->shiftingInProgress());
  scrollView->setContentOffset({0, 999});
  advance(0.1);  // the second one restores again
  EXPECT_EQ(offset(), (Point{5, 600}));

  // A pending restore holds the released fixer and scroll view; once it has run, the fixer and its observation
  // are gone and a hide schedules nothing.
  scrollView->setContentOffset({0, 0});
  show({0, 250});
  hide();
  std::weak_ptr<WebViewKeyboardOffsetFixer> weak = fixer;
  fixer.reset();
  webView.reset();
  auto keep = std::exchange(scrollView, nullptr);
  EXPECT_FALSE(weak.expired());
  advance(0.2);
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(keep->contentOffset(), (Point{0, 0}));
  EXPECT_EQ(device.notifications().observerCount(), before);
  hide();
  EXPECT_FALSE(device.dispatch().nextTimer());
}

TEST_F(KeyboardOffsetFixerTest, IgnoresEventsWithoutAWebViewOrItsScrollView) {
  auto bare = std::make_shared<WebView>();
  bare->addSubview(std::make_shared<View>());
  auto lost = WebViewKeyboardOffsetFixer::make(webView);
  auto noScroll = WebViewKeyboardOffsetFixer::make(bare);
  webView.reset();
  EXPECT_EQ(lost->webview(), nullptr);
  show({0, 300});
  noScroll->keyboardWillShow(Notification{});  // called directly, the same
  hide();
  for (const auto& fixer : {lost, noScroll}) {
    EXPECT_FALSE(fixer->keyboardShown());
    EXPECT_FALSE(fixer->shiftingInProgress());
  }
  EXPECT_FALSE(device.dispatch().nextTimer());
  advance(1);
  EXPECT_EQ(offset(), (Point{0, 300}));
}

TEST_F(KeyboardOffsetFixerTest, UsesTheFirstScrollViewSubviewFoundAtEachEvent) {
  auto fixer = WebViewKeyboardOffsetFixer::make(webView);
  auto other = std::make_shared<ScrollView>();
  other->setContentOffset({0, 40});
  // Swap the web view's scroll view for another one between show and hide.
  scrollView->setContentOffset({0, 10});
  show({0, 20});
  scrollView->removeFromSuperview();
  webView->addSubview(std::make_shared<View>());
  webView->addSubview(other);
  other->setContentOffset({0, 400});
  hide();
  advance(0.2);
  EXPECT_EQ(other->contentOffset(), (Point{0, 10}));
  EXPECT_EQ(offset(), (Point{0, 20}));  // the old one was not touched again
}

class AttachFixerTest : public testing_support::BridgeTestFixture {
 protected:
  std::shared_ptr<WebViewKeyboardOffsetFixer> fixerOf(const char* screen) {
    return std::dynamic_pointer_cast<WebViewKeyboardOffsetFixer>(getOffsetFixer(*device.screen(screen)));
  }
};

TEST_F(AttachFixerTest, FindsTheWebViewInAChildScreenAndAttachingAgainReplacesTheEarlierFixer) {
  // The screen's own web view must be a direct subview; a child screen's is found too.
  apply(R"({"screens": [
    {"name": "host", "children": [{"name": "middle", "children": [
      {"name": "page", "view": {"subviews": [{"kind": "webView", "name": "page.web"}]}}]}]},
    {"name": "plain", "view": {"subviews": [{"kind": "view", "subviews": [{"kind": "webView", "name": "deep.web"}]}]}}
  ]})");
  auto before = device.notifications().observerCount();
  Laizaxlu::shared().attachKeyboardOffsetFixer(*device.screen("plain"));
  EXPECT_EQ(device.notifications().observerCount(), before);
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(getOffsetFixer(*device.screen("plain")), "offsetFixer");

  Laizaxlu::shared().attachKeyboardOffsetFixer(*device.screen("host"));
  ASSERT_TRUE(fixerOf("host"));
  EXPECT_EQ(fixerOf("host")->webview(), device.findView("page.web"));
  Laizaxlu::shared().attachKeyboardOffsetFixer(*device.screen("page"));
  std::weak_ptr<WebViewKeyboardOffsetFixer> first = fixerOf("page");
  Laizaxlu::shared().attachKeyboardOffsetFixer(*device.screen("page"));
  EXPECT_TRUE(first.expired());
  EXPECT_NE(fixerOf("page"), nullptr);
  EXPECT_EQ(device.notifications().observerCount(), before + 4);

  // Releasing the screens releases its fixer.
  std::weak_ptr<WebViewKeyboardOffsetFixer> second = fixerOf("page");
  apply(R"({"screens": []})");
  EXPECT_TRUE(second.expired());
  EXPECT_EQ(device.notifications().observerCount(), before);
}

}  // namespace
}  // namespace vantu
