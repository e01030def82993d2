// Hex colours and the container customizer.

#include <gtest/gtest.h>

#include "platforms/sim/sim_ui.h"
#include "tests/container_appearance/container_fixture.h"
#include "vantu/container/vantu_h5_color.h"
#include "vantu/container/vantu_h5_container_customizer.h"
#include "vantu/core/view_controller_context.h"

namespace vantu {
namespace {

using testing_support::ContainerFixture;
using Strings = std::vector<std::string>;

TEST(VantuH5ColorTest, ReadsSixHexDigitsAndGivesGreyOtherwise) {
  const Color orange{1.0, 136 / 255.0, 0.0, 1.0};
  const Color grey{0.5, 0.5, 0.5, 1.0};
  const struct {
    std::string_view text;
    Color expected;
  } kCases[] = {
      {"#FF8800", orange},
      {"ff8800", orange},
      {"  ff8800 \t", orange},
      {"\u00A0#Ff8800\u2028", orange},  // Unicode blanks are trimmed too
      {"#102030", {16 / 255.0, 32 / 255.0, 48 / 255.0, 1.0}},
      {"12ZZ34", {0.0, 0.0, 18 / 255.0, 1.0}},  // the scan stops at the first non-hex digit
      {"0x12ab", {0.0, 0x12 / 255.0, 0xAB / 255.0, 1.0}},  // a scanner's 0x prefix
      {"abc", grey},
      {"#abc", grey},
      {"#FF880080", grey},
      {"##FF8800", grey},  // only one "#" is dropped
      {"", grey},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(VantuH5Color::colorFromHexString(c.text), c.expected) << "\"" << c.text << "\"";
  }
}

class CustomizerTest : public ContainerFixture {
 protected:
  /// Customizes `screen` with the flags given as JSON; `withNavigation`
  /// passes the screen's navigation controller. Returns the printed lines.
  Strings customize(std::string_view screen, std::string_view flagsJson, bool withNavigation = true) {
    auto vc = device.screen(screen);
    auto flags = json::parse(flagsJson);
    EXPECT_TRUE(flags.ok() && flags.value().isDict());
    VantuH5ContainerCustomizer::customize(*vc, withNavigation ? vc->navigationController() : nullptr,
                                          *flags.value().asDict());
    return device.takePrintedLines();
  }
  std::shared_ptr<View> strip() {
    return device.application().keyWindow()->viewWithTag(VantuH5ContainerCustomizer::kStatusbarBackgroundViewTag);
  }
};

TEST_F(CustomizerTest, RejectedFlagsPrintTheirLineAndChangeNothing) {
  const std::string kNoNav = "VantuH5ContainerCustomizer: No navigation controlelr!!!";
  const std::string kVisible = "VantuH5ContainerCustomizer: Visible flag typecast failure!!!";
  const struct {
    std::string_view flags;
    bool withNavigation;
    Strings printed;
  } kCases[] = {
      {R"({"vantuShowTitleBar": false})", false, {kNoNav}},
      {R"({"vantuRenderAboveHomeIndicator": true})", false, {kNoNav}},
      {R"({"vantuChangeBackButtonColor": "#ff0000"})", false, {kNoNav}},
      {R"({"vantuShowTitleBar": "false"})", true, {kVisible}},
      {R"({"vantuRenderAboveHomeIndicator": "yes"})", true, {kVisible}},
      {R"({"vantuChangeBackButtonColor": 255})", true,
       {"VantuH5ContainerCustomizer: Hex string typecast failed in customizeNavigationBarColor!!!"}},
      {R"({"vantuChangeStatusBarColor": true})", true,
       {"VantuH5ContainerCustomizer: Hex string typecast failed in customizeStatusbarBackgroundColor!!!"}},
      {R"({"unknownKey": 1})", true, {"Unrecognized flag value unknownKey"}},
      // Keys match exactly.
      {R"({"vantuResetStatusBarBackgroundColor": true, "vantushowtitlebar": false})", true,
       {"Unrecognized flag value vantuResetStatusBarBackgroundColor", "Unrecognized flag value vantushowtitlebar"}},
      // Every flag is handled on its own, in order.
      {R"({"a": 1, "vantuShowTitleBar": "x", "b": 2})", true,
       {"Unrecognized flag value a", kVisible, "Unrecognized flag value b"}},
  };
  auto shop = device.screen("shop");
  auto bar = device.screen("nav")->navigationController();
  for (const auto& c : kCases) {
    EXPECT_EQ(customize("shop", c.flags, c.withNavigation), c.printed) << c.flags;
    EXPECT_EQ(getTopSafeAreaTreatmentRequired(*shop), std::nullopt) << c.flags;
    EXPECT_EQ(getBottomSafeAreaTreatmentRequired(*shop), std::nullopt) << c.flags;
    EXPECT_EQ(strip(), nullptr) << c.flags;
    EXPECT_TRUE(device.effects()->take().empty()) << c.flags;
  }
}

TEST_F(CustomizerTest, LayoutFollowsTheBarTheBottomFlagAndTheSystemVersion) {
  const struct {
    std::string_view flags, systemVersion;
    bool barHidden;
    std::optional<bool> top;  // the screen's top safe-area flag afterwards
    Rect root, web;
  } kCases[] = {
      // Hidden bar: the web view starts at the top inset (47).
      {R"({"vantuShowTitleBar": false})", "17.5", true, true, {0, 0, 390, 844}, {0, 47, 390, 797}},
      {R"({"vantuShowTitleBar": false})", "11.0", true, true, {0, 0, 390, 844}, {0, 47, 390, 797}},
      // Shown bar: the root view starts below status bar and bar (47 + 44).
      {R"({"vantuShowTitleBar": true})", "17.5", false, true, {0, 91, 390, 753}, {0, 0, 390, 753}},
      {R"({"vantuRenderAboveHomeIndicator": true})", "17.5", false, {}, {0, 91, 390, 753}, {0, 0, 390, 719}},
      {R"({"vantuRenderAboveHomeIndicator": false})", "17.5", false, {}, {0, 91, 390, 753}, {0, 0, 390, 753}},
      {R"({"vantuRenderAboveHomeIndicator": true, "vantuShowTitleBar": false})", "17.5", true, true,
       {0, 0, 390, 844}, {0, 47, 390, 763}},
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

TEST_F(CustomizerTest, StatusStripIsReplacedNotStackedAndResetRemovesIt) {
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
  EXPECT_EQ(window->subviews().size(), before);

  // Without a key window neither does anything.
  device.application().setKeyWindow(nullptr);
  EXPECT_EQ(customize("loose", R"({"vantuChangeStatusBarColor": "#ff0000", "vantuResetStatusbarBackgroundColor": 1})"),
            Strings{});
  EXPECT_EQ(window->subviews().size(), before);
}

TEST_F(CustomizerTest, BackButtonColourTintsTheBar) {
  customize("shop", R"({"vantuChangeBackButtonColor": "#336699"})");
  auto nav = std::dynamic_pointer_cast<NavigationController>(device.screen("nav"));
  EXPECT_EQ(nav->navigationBar()->tintColor(), (Color{0x33 / 255.0, 0x66 / 255.0, 0x99 / 255.0, 1}));
  customize("shop", R"({"vantuChangeBackButtonColor": "nope"})");
  EXPECT_EQ(nav->navigationBar()->tintColor(), (Color{0.5, 0.5, 0.5, 1}));
}

}  // namespace
}  // namespace vantu
