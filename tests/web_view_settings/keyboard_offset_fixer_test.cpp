// The keyboard-offset fixer on virtual time, and attaching it to a screen.

#include "vantu/container/web_view_keyboard_offset_fixer.h"

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/platform/keyboard_notifications.h"

namespace vantu {
namespace {

class KeyboardOffsetFixerTest : public testing_support::BridgeTestFixture {
 protected:
  /// The keyboard is announced, then the platform scrolls the focused
  /// field into view.
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

TEST_F(KeyboardOffsetFixerTest, RestoresTheOffsetSavedAtShowTwoTenthsOfASecondAfterHide) {
  auto before = device.notifications().observerCount();
  auto fixer = WebViewKeyboardOffsetFixer::make(webView);
  EXPECT_EQ(device.notifications().observerCount(), before + 2);
  scrollView->setContentOffset({0, 120});
  device.notifications().post(kKeyboardWillShowNotification);
  EXPECT_TRUE(fixer->keyboardShown());
  EXPECT_EQ(fixer->scrollViewOffsetBeforeKeyboardShown(), (Point{0, 120}));

  scrollView->setContentOffset({0, 480}, true);  // the platform's own scroll
  hide();
  EXPECT_FALSE(fixer->keyboardShown());
  EXPECT_TRUE(fixer->shiftingInProgress());
  advance(0.199);
  EXPECT_EQ(offset(), (Point{0, 480}));
  EXPECT_TRUE(fixer->shiftingInProgress());
  advance(0.001);
  EXPECT_EQ(offset(), (Point{0, 120}));
  EXPECT_FALSE(scrollView->lastOffsetChangeAnimated());
  EXPECT_FALSE(fixer->shiftingInProgress());

  // Idle again: the next show saves afresh.
  scrollView->setContentOffset({5, 600});
  show({5, 900});
  EXPECT_EQ(fixer->scrollViewOffsetBeforeKeyboardShown(), (Point{5, 600}));

  // Releasing the fixer ends the observation: a hide schedules nothing.
  std::weak_ptr<WebViewKeyboardOffsetFixer> weak = fixer;
  fixer.reset();
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(device.notifications().observerCount(), before);
  hide();
  EXPECT_FALSE(device.dispatch().nextTimer());
}

// A show while a restore is pending is pinned by runner case 14.

TEST_F(KeyboardOffsetFixerTest, TwoHidesEachScheduleARestore) {
  auto fixer = WebViewKeyboardOffsetFixer::make(webView);
  show({0, 10});
  hide();
  advance(0.1);
  hide();
  advance(0.1);  // the first restore: offset back, not shifting any more
  EXPECT_FALSE(fixer->shiftingInProgress());
  scrollView->setContentOffset({0, 999});
  advance(0.1);  // the second one restores again
  EXPECT_EQ(offset(), (Point{0, 0}));
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

TEST_F(KeyboardOffsetFixerTest, APendingRestoreHoldsTheFixerAndTheScrollView) {
  auto fixer = WebViewKeyboardOffsetFixer::make(webView);
  std::weak_ptr<WebViewKeyboardOffsetFixer> weak = fixer;
  std::weak_ptr<ScrollView> weakScroll = scrollView;
  show({0, 0});
  scrollView->setContentOffset({0, 250});
  hide();
  fixer.reset();
  webView.reset();
  auto keep = scrollView;
  scrollView.reset();
  EXPECT_FALSE(weak.expired());
  advance(0.2);
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(keep->contentOffset(), (Point{0, 0}));
}

// --- Attaching through the environment.

class AttachFixerTest : public testing_support::BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"screens": [
      {"name": "host", "children": [
        {"name": "middle", "children": [
          {"name": "page", "view": {"subviews": [{"kind": "webView", "name": "page.web"}]}}]}]},
      {"name": "plain", "view": {"subviews": [{"kind": "view", "subviews": [{"kind": "webView", "name": "deep.web"}]}]}}
    ]})");
  }
  std::shared_ptr<WebViewKeyboardOffsetFixer> fixerOf(const char* screen) {
    return std::dynamic_pointer_cast<WebViewKeyboardOffsetFixer>(getOffsetFixer(*device.screen(screen)));
  }
};

TEST_F(AttachFixerTest, WithoutAWebViewNothingIsAttached) {
  auto before = device.notifications().observerCount();
  Laizaxlu::shared().attachKeyboardOffsetFixer(*device.screen("plain"));  // only a nested web view
  EXPECT_EQ(device.notifications().observerCount(), before);
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(getOffsetFixer(*device.screen("plain")), "offsetFixer");
}

TEST_F(AttachFixerTest, FindsTheWebViewInAChildScreenAndAttachingAgainReplacesTheEarlierFixer) {
  auto before = device.notifications().observerCount();
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

TEST_F(AttachFixerTest, ScenarioScreensCanAskForAFixer) {
  apply(R"({"screens": [{"name": "outer", "keyboardOffsetFixer": true,
                         "children": [{"name": "inner", "view": {"subviews": [{"kind": "webView", "name": "inner.web"}]}}]},
                        {"name": "noFixer", "keyboardOffsetFixer": false,
                         "view": {"subviews": [{"kind": "webView", "name": "other.web"}]}}]})");
  auto fixer = fixerOf("outer");
  ASSERT_TRUE(fixer);
  EXPECT_EQ(fixer->webview(), device.findView("inner.web"));
  EXPECT_EQ(device.notifications().observerCount(), 2u);

  auto parsed = json::parse(R"({"screens": [{"name": "x", "keyboardOffsetFixer": 1}]})");
  auto error = device.apply(parsed.value());
  ASSERT_TRUE(error);
  EXPECT_EQ(*error, "screens: [0]: \"keyboardOffsetFixer\" must be a boolean");
}

}  // namespace
}  // namespace vantu
