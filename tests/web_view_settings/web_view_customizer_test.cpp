// The web-view flag keys, the customiser's printed lines and settings, and
// the "vantuChangeWebSetting" bridge.

#include "vantu/container/vantu_h5_web_view_customizer.h"

#include <optional>
#include <string>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/container/web_view_settings_customization_handler.h"
#include "vantu/runtime/bridge_registry.h"

namespace vantu {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kNotSupported = "This feature is not supported by this version of Keglib";
constexpr const char* kInsetNotInteger = "Failed to apply contentInsetAdjustmentBehavior; the value passed is not an integer";
constexpr const char* kInsetOldOs = "Failed to apply contentInsetAdjustmentBehavior since iOS version < 11";
constexpr const char* kDismissNotInteger = "Failed to apply keyboardDismissMode; the value passed is not an integer";

class WebViewCustomizerTest : public testing_support::BridgeTestFixture {};

struct CustomizerCase {
  const char* flags;
  const char* systemVersion;
  Lines printed;
  std::optional<std::int64_t> inset;
  std::optional<std::int64_t> dismiss;
};

TEST_F(WebViewCustomizerTest, PrintsOneLinePerRejectedFlagAndAppliesTheRest) {
  const CustomizerCase cases[] = {
      {R"({"mediaPlaybackRequiresUserGesture": true})", "17.5", {kNotSupported}, {}, {}},
      {R"({"contentInsetAdjustmentBehavior": 2})", "17.5", {}, 2, {}},
      {R"({"contentInsetAdjustmentBehavior": 2.0})", "17.5", {kInsetNotInteger}, {}, {}},
      {R"({"contentInsetAdjustmentBehavior": true})", "17.5", {kInsetNotInteger}, {}, {}},
      {R"({"contentInsetAdjustmentBehavior": -7})", "17.5", {}, -7, {}},  // passed through unchecked
      {R"({"contentInsetAdjustmentBehavior": 3})", "10.3", {kInsetOldOs}, {}, {}},
      {R"({"contentInsetAdjustmentBehavior": "3"})", "10.3", {kInsetNotInteger}, {}, {}},
      {R"({"keyboardDismissMode": 1})", "17.5", {}, {}, 1},
      {R"({"keyboardDismissMode": 1})", "10.3", {}, {}, 1},  // no version gate
      {R"({"keyboardDismissMode": "1"})", "17.5", {kDismissNotInteger}, {}, {}},
      {R"({"KeyboardDismissMode": 1})", "17.5", {"Failed to apply unmapped key: KeyboardDismissMode"}, {}, {}},
      {R"({"zoom": 1, "keyboardDismissMode": 2.5, "allowsInlineMediaPlayback": 0, "contentInsetAdjustmentBehavior": 1, "": 0})",
       "17.5",
       {"Failed to apply unmapped key: zoom", kDismissNotInteger, kNotSupported, "Failed to apply unmapped key: "},
       1,
       {}},
      {R"({})", "17.5", {}, {}, {}},
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
}

TEST_F(WebViewCustomizerTest, SomethingOtherThanAWebViewGetsTheDiagnosticsButNoSettings) {
  auto scrollView = std::make_shared<ScrollView>();
  const Dict flags = dataOf(R"({"contentInsetAdjustmentBehavior": 2, "keyboardDismissMode": "x", "keyboardDismissMode2": 1})");
  const Lines expected{kDismissNotInteger, "Failed to apply unmapped key: keyboardDismissMode2"};
  for (const std::shared_ptr<Object>& target : {std::shared_ptr<Object>(scrollView), std::make_shared<Object>(),
                                                 std::shared_ptr<Object>()}) {
    VantuH5WebViewCustomizer::customize(target, flags);
    EXPECT_EQ(device.takePrintedLines(), expected);
  }
  EXPECT_EQ(scrollView->contentInsetAdjustmentBehavior(), std::nullopt);
}

TEST_F(WebViewCustomizerTest, NonStringKeysAreUnmappedAndNamedByTheirText) {
  auto webView = WebView::make();
  VantuH5WebViewCustomizer::customize(webView, Dict{{7, 1}, {"keyboardDismissMode", 4}, {true, 1}});
  EXPECT_EQ(device.takePrintedLines(), (Lines{"Failed to apply unmapped key: 7", "Failed to apply unmapped key: true"}));
  EXPECT_EQ(webView->scrollView()->keyboardDismissMode(), 4);
}

// --- The bridge.

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
        {"name": "wrapped", "view": {"subviews": [{"kind": "view", "subviews": [{"kind": "webView", "name": "wrapped.web"}]}]}},
        {"name": "parent", "children": [{"name": "child", "view": {"subviews": [{"kind": "webView", "name": "child.web"}]}}]}
      ]})");
  }

  std::shared_ptr<ScrollView> scrollViewNamed(const char* name) {
    return std::dynamic_pointer_cast<ScrollView>(device.findView(name));
  }
};

using testing_support::flatError;

TEST_F(WebSettingBridgeTest, ChecksTheCallInOrderAndAnswersOnce) {
  struct Case {
    const char* screen;
    Dict data;
    std::string answer;
  };
  const Case cases[] = {
      {"", Dict{{7, 1}}, flatError("WebViewSettingsCustomizationHandler: Unable to get current H5 Context")},
      {"wrapped", Dict{{7, 1}}, flatError("WebViewSettingsCustomizationHandler: Unable to get webview")},
      {"parent", Dict{}, flatError("WebViewSettingsCustomizationHandler: Unable to get webview")},
      {"page", Dict{{"keyboardDismissMode", 1}, {7, 1}},
       flatError("WebViewSettingsCustomizationHandler: Typecast of [AnyHashable : Any] to [String:Any] failed!")},
      {"page", Dict{}, "true"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.screen) + " " + json::write(Value(c.data)));
    auto out = call("vantuChangeWebSetting", c.data, c.screen);
    EXPECT_EQ(out.answers, Lines{c.answer});
    // Reported before anything is checked, when there is a delegate to report to.
    EXPECT_EQ(out.reported, std::string(c.screen) == "page" ? Lines{"vantuChangeWebSetting"} : Lines{});
    EXPECT_EQ(device.takePrintedLines(), Lines{});
  }
  // Nothing was applied by any of them.
  EXPECT_EQ(scrollViewNamed("page.web.scrollView")->keyboardDismissMode(), std::nullopt);
  EXPECT_EQ(scrollViewNamed("child.web.scrollView")->keyboardDismissMode(), std::nullopt);
}

TEST_F(WebSettingBridgeTest, AppliesTheWholeDataToTheFirstWebViewAndAnswersTrueDespiteRejections) {
  auto answers = send("vantuChangeWebSetting", Dict{{"keyboardDismissMode", 2}, {"allowsInlineMediaPlayback", true},
                                   {"contentInsetAdjustmentBehavior", "never"}, {"contentInsetAdjustmentBehavior2", 1}},
                      "page");
  EXPECT_EQ(answers, Lines{"true"});
  EXPECT_EQ(device.takePrintedLines(),
            (Lines{kNotSupported, kInsetNotInteger, "Failed to apply unmapped key: contentInsetAdjustmentBehavior2"}));
  EXPECT_EQ(scrollViewNamed("page.web.scrollView")->keyboardDismissMode(), 2);
  EXPECT_EQ(scrollViewNamed("page.web2.scrollView")->keyboardDismissMode(), std::nullopt);
  // The change shows as the scroll view's settings effect.
  auto effects = device.effects()->take();
  ASSERT_EQ(effects.size(), 1u);
  EXPECT_EQ(json::write(effects[0]),
            R"({"effect":"view","view":"page.web.scrollView","change":"scrollSettings","value":{"keyboardDismissMode":2}})");
}

}  // namespace
}  // namespace vantu
