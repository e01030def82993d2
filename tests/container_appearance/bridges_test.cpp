// The bar and strip bridges and the two push-window bridges, called
// through the registry from the simulated container app.

#include <gtest/gtest.h>

#include "tests/container_appearance/container_fixture.h"

namespace vantu {
namespace {

using testing_support::ContainerFixture;
using testing_support::flatError;
using testing_support::Strings;

class BarBridgesTest : public ContainerFixture {};

// Runner case 13 pins the successful calls, the printed customizer line and
// the refusals it shares with this table.
TEST_F(BarBridgesTest, ChecksAndAnswers) {
  const struct {
    std::string_view bridge, data, screen;
    std::string answer;
    Strings printed;
  } kCases[] = {
      {"vantuShowTitleBar", R"({"value": true})", "", flatError("TitleBarVisibilityHandler: Failed to bind params.viewController!")},
      {"vantuRenderAboveHomeIndicator", R"({"value": true})", "",
       flatError("RendersAboveHomeIndicatorHandler: Failed to bind params.viewController!")},
      {"vantuRenderAboveHomeIndicator", R"({"value": 1})", "shop",
       flatError("RendersAboveHomeIndicatorHandler: Failed to bind kRendersAboveHomeIndicatorStatus value as a boolean!")},
      {"vantuChangeStatusBarColor", R"({"color": "#fff"})", "",
       flatError("StatusbarBackgroundColorChangeHandler: Failed to bind params.viewController!")},
      {"vantuChangeStatusBarColor", R"({"color": 16777215})", "shop",
       flatError("StatusbarBackgroundColorChangeHandler: Failed to bind color hex value as a string!")},
      {"vantuResetStatusBarBackgroundColor", R"({"anything": 1})", "loose", "true"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(send(c.bridge, c.data, c.screen), Strings{c.answer}) << c.bridge << " " << c.data << " from " << c.screen;
    EXPECT_EQ(device.takePrintedLines(), c.printed) << c.bridge << " " << c.data << " from " << c.screen;
  }
}

class PushWindowTest : public ContainerFixture {
 protected:
  /// The provider calls and pushes recorded since the last look, as JSON.
  Strings providerCalls() {
    Strings out;
    for (const auto& c : device.takeDelegateCalls()) out.push_back(json::write(c));
    return out;
  }
  Strings pushes() {
    Strings out;
    for (const auto& e : device.effects()->take()) {
      if (e.getString("effect") == "push") out.push_back(json::write(e));
    }
    return out;
  }
};

TEST_F(PushWindowTest, ChecksInOrder) {
  const std::string kNoContext = "Unable to get current H5 Context";
  const std::string kNoUrl = "invalid parameters: no url could be bound in data";
  const std::string kNotHttps = "VantuPushWindow only supports https urls.";
  const std::string kNoParams = "invalid parameters: no params or param could be bound in data";
  const std::string kNoNav = "Unable to get nav controller";
  const struct {
    std::string_view bridge, data, screen;
    std::string message;
  } kCases[] = {
      // Each case also breaks every later check, so the order shows.
      {"vantuPushWindow", R"({"url": 1})", "", kNoContext},
      {"vantuPushWindow", R"({"url": 1, "params": 1})", "loose", kNoUrl},
      {"vantuPushWindow", R"({"url": "http://a.b/", "params": 1})", "loose", kNotHttps},
      {"vantuPushWindow", R"({"url": "HTTPS://a.b/", "params": 1})", "loose", kNotHttps},
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
    EXPECT_EQ(send(c.bridge, c.data, c.screen), Strings{flatError(c.message)}) << c.bridge << " " << c.data;
    EXPECT_EQ(providerCalls(), Strings{}) << c.bridge << " " << c.data;
    EXPECT_EQ(pushes(), Strings{}) << c.bridge << " " << c.data;
  }
}

TEST_F(PushWindowTest, HttpsIsASubstringTestAndParamsWinsOverParam) {
  const struct {
    std::string_view data;
    std::string_view expectedParams;  // what the provider receives, "" for a refusal
  } kCases[] = {
      {R"({"url": "http://a.b/to/https/page", "params": {"k": 1}})", R"({"k":1,"url":"http://a.b/to/https/page"})"},
      {R"({"url": "myhttpsapp", "params": {}})", R"({"url":"myhttpsapp"})"},
      {R"({"url": "https://a.b/", "params": {"p": 1}, "param": {"q": 2}})", R"({"p":1,"url":"https://a.b/"})"},
      {R"({"url": "https://a.b/", "params": "p=1", "param": {"q": 2}})", R"({"q":2,"url":"https://a.b/"})"},
      {R"({"url": "https://a.b/", "params": {"url": "old", "x": true}})", R"({"url":"https://a.b/","x":true})"},
  };
  for (const auto& c : kCases) {
    std::string data(c.data);
    data.insert(data.size() - 1, R"(, "appId": "other.app")");
    EXPECT_EQ(send("vantuPushWindow", data, "shop"), Strings{}) << c.data;
    auto calls = device.takeDelegateCalls();
    ASSERT_EQ(calls.size(), 1u) << c.data;
    EXPECT_EQ(json::write(calls[0].getDict("arguments")->getDict("params").value()), c.expectedParams);
    EXPECT_EQ(pushes().size(), 1u);
  }
}

TEST_F(PushWindowTest, SuccessPushesTheProvidersScreenAndAnswersNothing) {
  // From a screen inside the navigation controller through its parent, with
  // flags of both kinds in the startup map.
  EXPECT_EQ(send("pushWindow", R"({"url": "https://shop.example/cart", "params": {
      "keyboardDismissMode": 1, "title": "Cart", "vantuShowTitleBar": false,
      "vantuChangeStatusBarColor": "#fff", "allowsInlineMediaPlayback": true, "vantushowtitlebar": 1}})",
                 "shop.frame"),
            Strings{});
  EXPECT_EQ(providerCalls(),
            Strings{R"({"delegate":"viewControllerProvider","operation":"viewControllerWith","arguments":{)"
                    R"("viewController":"shop.frame","params":{"keyboardDismissMode":1,"title":"Cart",)"
                    R"("vantuShowTitleBar":false,"vantuChangeStatusBarColor":"#fff","allowsInlineMediaPlayback":true,)"
                    R"("vantushowtitlebar":1,"url":"https://shop.example/cart"},)"
                    R"("customizationParams":{"vantuShowTitleBar":false,"vantuChangeStatusBarColor":"#fff"},)"
                    R"("webViewFlags":{"keyboardDismissMode":1,"allowsInlineMediaPlayback":true},)"
                    R"("uniqueAppId":"shop.mini"}})"});
  EXPECT_EQ(pushes(),
            Strings{R"({"effect":"push","navigationController":"nav","pushed":"shop.mini#1","animated":true})"});
}

TEST_F(PushWindowTest, NoProviderOrNoScreenFromItIsOneError) {
  const std::string kNoResult =
      flatError("Provider was nil or it returned nil result for view controller to push");
  for (std::string_view environment : {R"({"viewControllerProvider": {"returns": null}})", R"({})", "null"}) {
    apply(R"({"environment": )" + std::string(environment) + "}");
    EXPECT_EQ(send("pushWindow", R"({"url": "a", "params": {}})", "shop"), Strings{kNoResult}) << environment;
    EXPECT_EQ(send("vantuPushWindow", R"({"url": "https:", "params": {}, "appId": "x"})", "shop"), Strings{kNoResult})
        << environment;
    EXPECT_EQ(pushes(), Strings{}) << environment;
  }
}

}  // namespace
}  // namespace vantu
