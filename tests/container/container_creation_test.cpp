// Creation errors, the container factory, provider configs and the presenter helper.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platforms/sim/sim_ui.h"
#include "tests/support/bridge_test_fixture.h"
#include "vantu/container/h5_dynamic_provider.h"
#include "vantu/container/h5_presenter_helper.h"
#include "vantu/container/h5_provider_config.h"
#include "vantu/container/h5_provider_error.h"

namespace vantu {
namespace {

class ContainerTest : public testing_support::BridgeTestFixture {
 protected:
  /// Applies a container screen inside a navigation controller inside a tab bar controller; returns the screen.
  std::shared_ptr<ViewController> containerScreen() {
    apply(R"({"screens": [{"name": "tabs", "kind": "tabBar", "children": [
      {"name": "nav", "kind": "navigation", "children": [{"name": "container"}]}]}]})");
    device.effects()->take();
    return device.screen("container");
  }
  std::shared_ptr<View> tabBar() { return std::dynamic_pointer_cast<TabBarController>(device.screen("tabs"))->tabBar(); }
  std::shared_ptr<View> navigationBar() {
    return std::dynamic_pointer_cast<NavigationController>(device.screen("nav"))->navigationBar();
  }
};

// --- Errors.

TEST(H5ProviderErrorTest, SixKindsWithFixedCodesMessagesAndDescriptions) {
  const struct {
    H5ProviderError error;
    std::int64_t code;
    std::string ending;  // of the message after "Failed to create H5 Container"
  } kKinds[] = {
      {H5ProviderError::appIDWhitelistingError(), 1, ", as the AppID is not Whitelisted."},
      {H5ProviderError::urlDomainWhitelistingError(), 2, ", as the Domain of URL is not Whitelisted."},
      {H5ProviderError::configurationError(), 3, ", as unable to fetch configuration."},
      {H5ProviderError::missingWebViewError(), 4, ", as unable to find WebView in container."},
      {H5ProviderError::internalError(), 5, " due to an Internal Error."},
      {H5ProviderError::urlNotFoundInParamsError(), 6, ", as no URL found in startup params."},
  };
  for (const auto& kind : kKinds) {
    const std::string message = "Failed to create H5 Container" + kind.ending;
    EXPECT_EQ(kind.error.code(), kind.code);
    EXPECT_EQ(kind.error.message(), message);
    const auto description = "H5ProviderError => code: " + std::to_string(kind.code) + " message: " + message;
    EXPECT_EQ(kind.error.localizedDescription(), description);

    PlatformError asPlatform = kind.error;
    EXPECT_EQ(asPlatform.domain, "H5ProviderError");
    EXPECT_EQ(asPlatform.code, kind.code);
    EXPECT_EQ(asPlatform.localizedDescription, description);
    EXPECT_EQ(H5ProviderError::fromPlatformError(asPlatform), kind.error);
  }
  // Only its own platform errors convert back.
  EXPECT_EQ(H5ProviderError::fromPlatformError(PlatformError{"Host", 5, "boom"}), std::nullopt);
  EXPECT_EQ(H5ProviderError::fromPlatformError(PlatformError{"H5ProviderError", 7, "?"}), std::nullopt);
}

TEST_F(ContainerTest, ErrorImageComesFromTheApplicationsImagesAndItsAbsenceStopsTheProcess) {
  Image replacement{"nearby_servertakingtime", Size{1, 1}, {1, 2, 3, 255}};
  device.images().add(replacement);
  EXPECT_EQ(*H5ProviderError::internalError().getErrorImage(), replacement);

  testing::FLAGS_gtest_death_test_style = "threadsafe";
  device.images().remove("nearby_servertakingtime");
  EXPECT_DEATH(H5ProviderError::internalError().getErrorImage(), "nearby_servertakingtime");
  device.platformBundle()->images.reset();
  EXPECT_DEATH(H5ProviderError::internalError().getErrorImage(), "image store");
}

// --- The factory.

/// A host provider that expects exactly the requests each test names.
class MockProvider : public H5ProviderDelegate {
 public:
  MOCK_METHOD(H5ViewControllerResult, getH5ViewControllerWith, (const Dict&, const std::string&, AppType), (override));
  MOCK_METHOD(std::shared_ptr<ViewController>, getH5ViewControllerWith, (const Dict&, const std::string&), (override));
  MOCK_METHOD(H5ViewControllerResult, getH5ViewControllerWith,
              (const Dict&, const Dict&, const Dict&, const std::shared_ptr<NavigationController>&,
               const std::string&, AppType),
              (override));
  MOCK_METHOD(std::shared_ptr<ViewController>, getH5ViewControllerWith,
              (const Dict&, const Dict&, const Dict&, const std::shared_ptr<NavigationController>&,
               const std::string&),
              (override));
  MOCK_METHOD(void, registerBridgeBundleWithName, (const std::string&), (override));
  MOCK_METHOD(void, registerHalcyraBridgeBundleWithName, (const std::string&), (override));
};
using testing::IsNull;
using testing::Return;
using testing::StrictMock;

const Dict kParams{{"url", "https://m/"}, {"appId", "sub"}};
const Dict kWebFlags{{"allowsInlineMediaPlayback", true}};
const Dict kBarFlags{{"showTitleBar", false}};

TEST_F(ContainerTest, EveryOperationAndItsErrorGoesToTheCurrentDelegateAndFailsWithoutOne) {
  auto& provider = H5DynamicProvider::shared();
  EXPECT_EQ(provider.providerDelegate(), nullptr);
  auto mock = std::make_shared<StrictMock<MockProvider>>();
  provider.setupWith(std::make_shared<StrictMock<MockProvider>>());
  provider.setupWith(mock);  // replaces the first, which is never asked
  const auto answer = std::make_shared<ViewController>();
  const auto nav = std::make_shared<NavigationController>();
  const PlatformError error{"HostContainer", 42, "no config", "because", Dict{{"k", 1}}};
  EXPECT_CALL(*mock, getH5ViewControllerWith(kParams, "app-1", AppType::miniapp))
      .WillOnce(Return(H5ViewControllerResult{answer, std::nullopt}));
  EXPECT_CALL(*mock, getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nav, "app-2", AppType::generic))
      .WillOnce(Return(H5ViewControllerResult{nullptr, error}));
  EXPECT_CALL(*mock, getH5ViewControllerWith(kParams, "app-3")).WillOnce(Return(answer));
  EXPECT_CALL(*mock, getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, IsNull(), "app-4"))
      .WillOnce(Return(answer));
  EXPECT_CALL(*mock, registerBridgeBundleWithName("storage"));
  EXPECT_CALL(*mock, registerHalcyraBridgeBundleWithName("location"));

  auto result = provider.getH5ViewControllerWith(kParams, "app-1", AppType::miniapp);
  EXPECT_EQ(result.viewController, answer);
  EXPECT_FALSE(result.error.has_value());
  result = provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nav, "app-2", AppType::generic);
  EXPECT_EQ(result.viewController, nullptr);
  EXPECT_EQ(result.error, error);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "app-3"), answer);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nullptr, "app-4"), answer);
  provider.registerBridgeBundleWithName("storage");
  provider.registerHalcyraBridgeBundleWithName("location");

  // Removed: every request fails with the internal error and registrations reach nobody.
  provider.setupWith(nullptr);
  const std::optional<PlatformError> internal = H5ProviderError::internalError().toPlatformError();
  for (const auto& result : {provider.getH5ViewControllerWith(kParams, "app", AppType::generic),
                             provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nav, "app",
                                                              AppType::miniapp)}) {
    EXPECT_EQ(result.viewController, nullptr);
    EXPECT_EQ(result.error, internal);
  }
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "app"), nullptr);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nullptr, "app"), nullptr);
  provider.registerBridgeBundleWithName("bundle");
  provider.registerHalcyraBridgeBundleWithName("bundle");
}

// --- Configs and the presenter helper.

TEST_F(ContainerTest, PresenterHelperPicksTheProviderOperationByTheConfigsFlag) {
  H5ProviderConfig config(kParams, "app", nullptr);
  H5ProviderConfig flagged(kParams, "app-2", {}, kBarFlags, nullptr, nullptr);
  EXPECT_FALSE(config.hideTabBar || config.hideBottomBar || config.hideNavigationBar || config.bgColor);  // defaults
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(config), nullptr);

  auto mock = std::make_shared<StrictMock<MockProvider>>();
  H5DynamicProvider::shared().setupWith(mock);
  const auto answer = std::make_shared<ViewController>();
  const auto nav = std::make_shared<NavigationController>();
  EXPECT_CALL(*mock, getH5ViewControllerWith(kParams, "app")).WillOnce(Return(answer));
  EXPECT_CALL(*mock, getH5ViewControllerWith(kParams, kWebFlags, Dict{}, nav, "app")).WillOnce(Return(answer));
  EXPECT_CALL(*mock, getH5ViewControllerWith(kParams, Dict{}, kBarFlags, IsNull(), "app-2")).WillOnce(Return(answer));
  // Flags assigned after the short constructor are not sent...
  config.webViewFlags = kWebFlags;
  config.navigationController = nav;
  config.hideTabBar = true;
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(config), answer);
  // ...until the flag is set by hand.
  config.shouldCallCustomizationMethod = true;
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(config), answer);
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(flagged), answer);
}

TEST_F(ContainerTest, ApplyingAConfigChangesOnlyWhatItAsksFor) {
  const struct {
    const char* name;
    bool hideTabBar, hideBottomBar, hideNavigationBar;
    std::optional<Color> bgColor;
  } kCases[] = {
      {"tab bar", true, false, false, std::nullopt},
      {"bottom bar", false, true, false, std::nullopt},
      {"navigation bar", false, false, true, std::nullopt},
      {"colour", false, false, false, Color{1, 0, 0, 1}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    auto screen = containerScreen();
    H5ProviderConfig config({}, "app", nullptr);
    config.hideTabBar = c.hideTabBar;
    config.hideBottomBar = c.hideBottomBar;
    config.hideNavigationBar = c.hideNavigationBar;
    config.bgColor = c.bgColor;
    config.applyConfigurationsOn(*screen);

    EXPECT_EQ(tabBar()->isHidden(), c.hideTabBar);
    EXPECT_EQ(screen->hidesBottomBarWhenPushed(), c.hideBottomBar);
    EXPECT_EQ(navigationBar()->isHidden(), c.hideNavigationBar);
    // Without a colour the root view is not even loaded.
    EXPECT_EQ(screen->viewIfLoaded() != nullptr, c.bgColor.has_value());
    if (c.bgColor) {
      EXPECT_EQ(screen->view()->backgroundColor(), c.bgColor);
    }
  }
}

TEST_F(ContainerTest, ApplyingAConfigNeverShowsOrClearsAnythingAndSkipsMissingBars) {
  auto container = containerScreen();
  tabBar()->setHidden(true);
  navigationBar()->setHidden(true);
  container->setHidesBottomBarWhenPushed(true);
  container->view()->setBackgroundColor(Color{0, 0, 1, 1});
  H5ProviderConfig config({}, "app", nullptr);
  config.applyConfigurationsOn(*container);
  EXPECT_TRUE(tabBar()->isHidden() && navigationBar()->isHidden());
  EXPECT_TRUE(container->hidesBottomBarWhenPushed());
  EXPECT_EQ(container->view()->backgroundColor(), (Color{0, 0, 1, 1}));

  // A screen without bar controllers still gets the rest.
  auto screen = std::make_shared<sim::SimViewController>(device.effects());
  config.hideTabBar = config.hideBottomBar = config.hideNavigationBar = true;
  config.bgColor = Color{0, 1, 0, 0.5};
  config.applyConfigurationsOn(*screen);
  EXPECT_TRUE(screen->hidesBottomBarWhenPushed());
  EXPECT_EQ(screen->view()->backgroundColor(), (Color{0, 1, 0, 0.5}));
}

}  // namespace
}  // namespace vantu
