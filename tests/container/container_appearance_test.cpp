// Hex colours, the container customizer, and the bar, strip and push-window bridges called through the registry.

#include <gtest/gtest.h>

#include "platforms/sim/sim_ui.h"
#include "tests/support/bridge_test_fixture.h"
#include "vantu/container/vantu_h5_color.h"
#include "vantu/container/vantu_h5_container_customizer.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {
namespace {

using testing_support::flatError;
using testing_support::Strings;

TEST(VantuH5ColorTest, ReadsSixHexDigitsAndGivesGreyOtherwise) {
  const Color orange{1.0, 136 / 255.0, 0.0, 1.0};
  const Color grey{0.5, 0.5, 0.5, 1.0};
  const struct {
    std::string_view text;
    Color expected;
  } kCases[] = {
      {"#FF8800", orange},
      {"ff8800", orange},
      {"\u00A0#Ff8800\u2028", orange},  // Unicode blanks are trimmed too
      {"12ZZ34", {0.0, 0.0, 18 / 255.0, 1.0}},  // the scan stops at the first non-hex digit
      {"0x12ab", {0.0, 0x12 / 255.0, 0xAB / 255.0, 1.0}},  // a scanner's 0x prefix
      {"#abc", grey},
      {"#FF880080", grey},
      {"##FF8800", grey},  // only one "#" is dropped
  };
  for (const auto& c : kCases) EXPECT_EQ(VantuH5Color::colorFromHexString(c.text), c.expected) << "'" << c.text << "'";
}

/// One simulated container app on a 390 x 844 phone (47-point status bar, safe area 47 / 34):
///   nav (navigation, bar 44) > shop (id "shop.mini", web view "shop.web" as a direct subview) > shop.frame
///   loose (id "loose.app", web view, no navigation controller); orphan (no id) inside nav2 (navigation);
///   bare (nothing attached, no navigation controller).
/// The environment's view-controller provider makes a screen per request.
class ContainerAppearanceTest : public testing_support::BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"environment": {"viewControllerProvider": {"returns": "screen"}},
      "screens": [
        {"name": "nav", "kind": "navigation", "navigationBar": {"hidden": false, "height": 44},
         "children": [
           {"name": "shop", "uniqueAppIdentifier": "shop.mini", "isH5": true,
            "view": {"frame": [0, 0, 390, 844], "subviews": [{"kind": "webView", "name": "shop.web"}]},
            "children": [{"name": "shop.frame"}]}]},
        {"name": "loose", "uniqueAppIdentifier": "loose.app",
         "view": {"subviews": [{"kind": "webView", "name": "loose.web"}]}},
        {"name": "nav2", "kind": "navigation", "children": [{"name": "orphan"}]},
        {"name": "bare"}]})");
  }
  /// Customizes `screen` with the flags given as JSON; `withNavigation` passes the screen's navigation controller.
  /// Returns the printed lines.
  Strings customize(std::string_view screen, std::string_view flagsJson, bool withNavigation = true) {
    auto vc = device.screen(screen);
    VantuH5ContainerCustomizer::customize(*vc, withNavigation ? vc->navigationController() : nullptr,
                                          dataOf(flagsJson));
    return device.takePrintedLines();
  }
  std::shared_ptr<View> strip() {
    return device.application().keyWindow()->viewWithTag(VantuH5ContainerCustomizer::kStatusbarBackgroundViewTag);
  }
};

// --- The customizer.

TEST_F(ContainerAppearanceTest, RejectedFlagsPrintTheirLineAndChangeNothing) {
  const std::string kNoNav = "VantuH5ContainerCustomizer: No navigation controlelr!!!";
  const std::string kVisible = "VantuH5ContainerCustomizer: Visible flag typecast failure!!!";
  const struct {
    std::string_view flags;
    bool withNavigation;
    Strings printed;
  } kCases[] = {
      // Runner case 13 pins the title bar without a navigation controller.
      {R"({"vantuRenderAboveHomeIndicator": true})", false, {kNoNav}},
      {R"({"vantuChangeBackButtonColor": "#ff0000"})", false, {kNoNav}},
      {R"({"vantuShowTitleBar": "false"})", true, {kVisible}},
      {R"({"vantuRenderAboveHomeIndicator": "yes"})", true, {kVisible}},
      {R"({"vantuChangeBackButtonColor": 255})", true,
       {"VantuH5ContainerCustomizer: Hex string typecast failed in customizeNavigationBarColor!!!"}},
      {R"({"vantuChangeStatusBarColor": true})", true,
       {"VantuH5ContainerCustomizer: Hex string typecast failed in customizeStatusbarBackgroundColor!!!"}},
      // Keys match exactly; every flag is handled on its own, in order.
      {R"({"vantuResetStatusBarBackgroundColor": true, "vantushowtitlebar": false})", true,
       {"Unrecognized flag value vantuResetStatusBarBackgroundColor", "Unrecognized flag value vantushowtitlebar"}},
      {R"({"a": 1, "vantuShowTitleBar": "x", "b": 2})", true,
       {"Unrecognized flag value a", kVisible, "Unrecognized flag value b"}},
  };
  auto shop = device.screen("shop");
  for (const auto& c : kCases) {
    EXPECT_EQ(customize("shop", c.flags, c.withNavigation), c.printed) << c.flags;
    EXPECT_EQ(getTopSafeAreaTreatmentRequired(*shop), std::nullopt) << c.flags;
    EXPECT_EQ(getBottomSafeAreaTreatmentRequired(*shop), std::nullopt) << c.flags;
    EXPECT_EQ(strip(), nullptr) << c.flags;
    EXPECT_TRUE(device.effects()->take().empty()) << c.flags;
  }
}

TEST_F(ContainerAppearanceTest, LayoutFollowsTheBarTheBottomFlagAndTheSystemVersion) {
  const struct {
    std::string_view flags, systemVersion;
    bool barHidden;
    std::optional<bool> top;  // the screen's top safe-area flag afterwards
    Rect root, web;
  } kCases[] = {
      // Hidden bar: the web view starts at the top inset (47). Runner case 13 pins it on 17.5, with and without
      // the bottom flag.
      {R"({"vantuShowTitleBar": false})", "11.0", true, true, {0, 0, 390, 844}, {0, 47, 390, 797}},
      // Shown bar: the root view starts below status bar and bar (47 + 44).
      {R"({"vantuShowTitleBar": true})", "17.5", false, true, {0, 91, 390, 753}, {0, 0, 390, 753}},
      {R"({"vantuRenderAboveHomeIndicator": true})", "17.5", false, {}, {0, 91, 390, 753}, {0, 0, 390, 719}},
      {R"({"vantuRenderAboveHomeIndicator": false})", "17.5", false, {}, {0, 91, 390, 753}, {0, 0, 390, 753}},
      // Before 11.0 the flags are applied but nothing is laid out.
      {R"({"vantuShowTitleBar": false})", "10.3", true, true, {0, 0, 390, 844}, {0, 0, 0, 0}},
  };
  for (const auto& c : kCases) {
    SetUp();
    apply(R"({"device": {"systemVersion": ")" + std::string(c.systemVersion) + R"("}})");
    EXPECT_EQ(customize("shop", c.flags), Strings{});
    auto shop = device.screen("shop");
    EXPECT_EQ(shop->navigationController()->navigationBar()->isHidden(), c.barHidden) << c.flags;
    EXPECT_EQ(getTopSafeAreaTreatmentRequired(*shop), c.top) << c.flags;
    EXPECT_EQ(shop->view()->frame(), c.root) << c.flags << " on " << c.systemVersion;
    EXPECT_EQ(view("shop.web")->frame(), c.web) << c.flags << " on " << c.systemVersion;
  }
  // The bottom flag is stored as given.
  customize("shop", R"({"vantuRenderAboveHomeIndicator": false})");
  EXPECT_EQ(getBottomSafeAreaTreatmentRequired(*device.screen("shop")), false);
}

TEST_F(ContainerAppearanceTest, StatusStripIsReplacedNotStackedAndResetRemovesIt) {
  auto window = device.application().keyWindow();
  const auto before = window->subviews().size();
  customize("loose", R"({"vantuChangeStatusBarColor": "#ff0000"})", false);
  customize("loose", R"({"vantuChangeStatusBarColor": " 00ff00\n"})", false);
  ASSERT_EQ(window->subviews().size(), before + 1);
  auto s = strip();
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(s->frame(), (Rect{0, 0, 390, 47}));
  EXPECT_EQ(s->backgroundColor(), (Color{0, 1, 0, 1}));

  EXPECT_EQ(customize("loose", R"({"vantuResetStatusbarBackgroundColor": "ignored"})", false), Strings{});
  EXPECT_EQ(strip(), nullptr);

  // Without a key window neither does anything.
  device.application().setKeyWindow(nullptr);
  EXPECT_EQ(customize("loose", R"({"vantuChangeStatusBarColor": "#ff0000", "vantuResetStatusbarBackgroundColor": 1})"),
            Strings{});
  EXPECT_EQ(window->subviews().size(), before);
}

TEST_F(ContainerAppearanceTest, BackButtonColourTintsTheBar) {
  auto bar = std::dynamic_pointer_cast<NavigationController>(device.screen("nav"))->navigationBar();
  customize("shop", R"({"vantuChangeBackButtonColor": "#336699"})");
  EXPECT_EQ(bar->tintColor(), (Color{0x33 / 255.0, 0x66 / 255.0, 0x99 / 255.0, 1}));
  customize("shop", R"({"vantuChangeBackButtonColor": "nope"})");
  EXPECT_EQ(bar->tintColor(), (Color{0.5, 0.5, 0.5, 1}));
}

// --- The bridges. Runner case 13 pins the successful bar calls and the printed customizer line.

TEST_F(ContainerAppearanceTest, BridgesCheckInOrderAndActOnlyWhenEveryCheckPasses) {
  const std::string kNoContext = "Unable to get current H5 Context";
  const std::string kNoUrl = "invalid parameters: no url could be bound in data";
  const std::string kNoParams = "invalid parameters: no params or param could be bound in data";
  const std::string kNoNav = "Unable to get nav controller";
  const std::string kNoVc = ": Failed to bind params.viewController!";
  const struct {
    std::string_view bridge, data, screen;
    std::string message;  // of the flat error, or "true"
  } kCases[] = {
      {"vantuShowTitleBar", R"({"value": true})", "", "TitleBarVisibilityHandler" + kNoVc},
      {"vantuRenderAboveHomeIndicator", R"({"value": true})", "", "RendersAboveHomeIndicatorHandler" + kNoVc},
      {"vantuRenderAboveHomeIndicator", R"({"value": 1})", "shop",
       "RendersAboveHomeIndicatorHandler: Failed to bind kRendersAboveHomeIndicatorStatus value as a boolean!"},
      {"vantuChangeStatusBarColor", R"({"color": "#fff"})", "", "StatusbarBackgroundColorChangeHandler" + kNoVc},
      {"vantuChangeStatusBarColor", R"({"color": 16777215})", "shop",
       "StatusbarBackgroundColorChangeHandler: Failed to bind color hex value as a string!"},
      // Each push case also breaks every later check, so the order shows.
      {"vantuPushWindow", R"({"url": 1})", "", kNoContext},
      {"vantuPushWindow", R"({"url": 1, "params": 1})", "loose", kNoUrl},
      // Runner case 13 pins a plain http URL; the scheme is matched in lower case only.
      {"vantuPushWindow", R"({"url": "HTTPS://a.b/", "params": 1})", "loose",
       "VantuPushWindow only supports https urls."},
      {"vantuPushWindow", R"({"url": "https://a.b/", "params": 1})", "loose", kNoParams},
      {"vantuPushWindow", R"({"url": "https://a.b/", "params": {}, "appId": 1})", "loose", kNoNav},
      {"vantuPushWindow", R"({"url": "https://a.b/", "params": {}, "appId": 1})", "shop",
       "invalid parameters: no uniqueId could be bound in data"},
      {"pushWindow", R"({"url": 1})", "", kNoContext},
      {"pushWindow", R"({"params": 1})", "bare", kNoUrl},
      // No https requirement here.
      {"pushWindow", R"({"url": "http://a.b/", "param": [1]})", "bare", kNoParams},
      {"pushWindow", R"({"url": "ftp://a.b/", "params": {"a": 1}, "param": {}})", "bare", kNoNav},
      {"pushWindow", R"({"url": "ftp://a.b/", "params": {}})", "orphan", "Failed to obtain uAId!"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(std::string(c.bridge) + " " + std::string(c.data) + " from " + std::string(c.screen));
    auto out = call(c.bridge, c.data, c.screen);
    EXPECT_EQ(out.answers, Strings{c.message == "true" ? "true" : flatError(c.message)});
    EXPECT_EQ(device.takePrintedLines(), Strings{});
    EXPECT_EQ(out.hostCalls, Strings{});  // the provider was not asked
    EXPECT_EQ(out.effects, Strings{});
  }
}

TEST_F(ContainerAppearanceTest, PushWindowHttpsIsASubstringTestAndParamsWinsOverParam) {
  const struct {
    std::string_view data;
    std::string_view expectedParams;  // what the provider receives
  } kCases[] = {
      {R"({"url": "http://a.b/to/https/page", "params": {"k": 1}})", R"({"k":1,"url":"http://a.b/to/https/page"})"},
      {R"({"url": "https://a.b/", "params": {"p": 1}, "param": {"q": 2}})", R"({"p":1,"url":"https://a.b/"})"},
      {R"({"url": "https://a.b/", "params": {"url": "old", "x": true}})", R"({"url":"https://a.b/","x":true})"},
  };
  for (const auto& c : kCases) {
    std::string data(c.data);
    data.insert(data.size() - 1, R"(, "appId": "other.app")");
    EXPECT_EQ(send("vantuPushWindow", data, "shop"), Strings{}) << c.data;
    auto calls = device.takeDelegateCalls();
    ASSERT_EQ(calls.size(), 1u) << c.data;
    EXPECT_EQ(json::write(calls[0].getDict("arguments")->getDict("params").value()), c.expectedParams);
    EXPECT_EQ(device.effects()->take().size(), 1u);  // the push
  }
}

TEST_F(ContainerAppearanceTest, PushWindowPushesTheProvidersScreenAndAnswersNothing) {
  // From a screen inside the navigation controller through its parent (runner case 13 pins the call from "shop" and
  // how the startup map is split).
  auto out = call("pushWindow", R"({"url": "https://shop.example/", "params": {"vantushowtitlebar": 1}})",
                  "shop.frame");
  EXPECT_EQ(out.answers, Strings{});
  EXPECT_EQ(out.hostCalls,
            Strings{R"({"delegate":"viewControllerProvider","operation":"viewControllerWith","arguments":{)"
                    R"("viewController":"shop.frame","params":{"vantushowtitlebar":1,"url":"https://shop.example/"},)"
                    R"("customizationParams":{},"webViewFlags":{},"uniqueAppId":"shop.mini"}})"});
  EXPECT_EQ(out.effects,
            Strings{R"({"effect":"push","navigationController":"nav","pushed":"shop.mini#1","animated":true})"});

  // No provider, or none of its screens, is one error.
  const std::string kNoResult = flatError("Provider was nil or it returned nil result for view controller to push");
  for (std::string_view environment : {R"({"viewControllerProvider": {"returns": null}})", R"({})", "null"}) {
    apply(R"({"environment": )" + std::string(environment) + "}");
    SCOPED_TRACE(environment);
    for (auto [bridge, data] : {std::pair{"pushWindow", R"({"url": "a", "params": {}})"},
                                std::pair{"vantuPushWindow", R"({"url": "https:", "params": {}, "appId": "x"})"}}) {
      auto out = call(bridge, data, "shop");
      EXPECT_EQ(out.answers, Strings{kNoResult});
      EXPECT_EQ(out.effects, Strings{});
    }
  }
}

}  // namespace
}  // namespace vantu
