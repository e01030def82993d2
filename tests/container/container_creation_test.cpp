// Creation errors, startup keys, the container factory, provider configs
// and the presenter helper.

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
#include "vantu/runtime/shared_state.h"
#include "vantu/value/json.h"

namespace vantu {
namespace {

using ContainerTest = testing_support::BridgeTestFixture;

// --- Errors.

TEST(H5ProviderErrorTest, SixKindsWithFixedCodesMessagesAndDescriptions) {
  struct Kind {
    H5ProviderError error;
    std::int64_t code;
    const char* message;
  };
  const Kind kKinds[] = {
      {H5ProviderError::appIDWhitelistingError(), 1, "Failed to create H5 Container, as the AppID is not Whitelisted."},
      {H5ProviderError::urlDomainWhitelistingError(), 2,
       "Failed to create H5 Container, as the Domain of URL is not Whitelisted."},
      {H5ProviderError::configurationError(), 3, "Failed to create H5 Container, as unable to fetch configuration."},
      {H5ProviderError::missingWebViewError(), 4,
       "Failed to create H5 Container, as unable to find WebView in container."},
      {H5ProviderError::internalError(), 5, "Failed to create H5 Container due to an Internal Error."},
      {H5ProviderError::urlNotFoundInParamsError(), 6,
       "Failed to create H5 Container, as no URL found in startup params."},
  };
  for (const auto& kind : kKinds) {
    EXPECT_EQ(kind.error.code(), kind.code);
    EXPECT_EQ(kind.error.message(), kind.message);
    const auto description = "H5ProviderError => code: " + std::to_string(kind.code) + " message: " + kind.message;
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

TEST_F(ContainerTest, ErrorImageComesFromTheApplicationsImages) {
  auto image = H5ProviderError::urlDomainWhitelistingError().getErrorImage();
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->name, "nearby_servertakingtime");
  EXPECT_EQ(image->size, (Size{4, 4}));
  EXPECT_EQ(image->bytes.size(), 4u * 4u * 4u);

  Image replacement{"nearby_servertakingtime", Size{1, 1}, {1, 2, 3, 255}};
  device.images().add(replacement);
  EXPECT_EQ(*H5ProviderError::internalError().getErrorImage(), replacement);
}

TEST_F(ContainerTest, AMissingErrorImageStopsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  device.images().remove("nearby_servertakingtime");
  EXPECT_DEATH(H5ProviderError::internalError().getErrorImage(), "nearby_servertakingtime");
  device.platformBundle()->images.reset();
  EXPECT_DEATH(H5ProviderError::internalError().getErrorImage(), "image store");
}

// --- The factory.

/// A host provider that records each request as "<operation> <arguments
/// as JSON>" and answers with its own view controller or error.
class StubProvider : public H5ProviderDelegate {
 public:
  std::vector<std::string> calls;
  std::shared_ptr<ViewController> answer = std::make_shared<ViewController>();
  std::optional<PlatformError> error;

  H5ViewControllerResult getH5ViewControllerWith(const Dict& params, const std::string& uniqueAppId,
                                                 AppType appType) override {
    record("withAppType", Dict{{"params", params}, {"id", uniqueAppId}, {"appType", rawValue(appType)}});
    return {error ? nullptr : answer, error};
  }
  std::shared_ptr<ViewController> getH5ViewControllerWith(const Dict& params, const std::string& uniqueAppId) override {
    record("plain", Dict{{"params", params}, {"id", uniqueAppId}});
    return answer;
  }
  H5ViewControllerResult getH5ViewControllerWith(const Dict& params, const Dict& webViewFlags,
                                                 const Dict& containerCustomizationFlags,
                                                 const std::shared_ptr<NavigationController>& nav,
                                                 const std::string& uniqueAppId, AppType appType) override {
    record("flagsWithAppType", Dict{{"params", params}, {"web", webViewFlags}, {"bars", containerCustomizationFlags},
                                    {"nav", nav ? nav->name() : "-"}, {"id", uniqueAppId},
                                    {"appType", rawValue(appType)}});
    return {error ? nullptr : answer, error};
  }
  std::shared_ptr<ViewController> getH5ViewControllerWith(const Dict& params, const Dict& webViewFlags,
                                                          const Dict& containerCustomizationFlags,
                                                          const std::shared_ptr<NavigationController>& nav,
                                                          const std::string& uniqueAppId) override {
    record("flags", Dict{{"params", params}, {"web", webViewFlags}, {"bars", containerCustomizationFlags},
                         {"nav", nav ? nav->name() : "-"}, {"id", uniqueAppId}});
    return answer;
  }
  void registerBridgeBundleWithName(const std::string& name) override { record("register", Dict{{"name", name}}); }
  void registerHalcyraBridgeBundleWithName(const std::string& name) override {
    record("registerHalcyra", Dict{{"name", name}});
  }

 private:
  void record(const char* operation, const Dict& arguments) {
    calls.push_back(std::string(operation) + " " + json::write(Value(arguments)));
  }
};

const Dict kParams{{"url", "https://m.example.com/"}, {"appId", "sub"}};
const Dict kWebFlags{{"allowsInlineMediaPlayback", true}};
const Dict kBarFlags{{"showTitleBar", false}};

std::shared_ptr<NavigationController> namedNavigation(const char* name) {
  auto nav = std::make_shared<NavigationController>();
  nav->setName(name);
  return nav;
}

TEST_F(ContainerTest, WithoutADelegateRequestsFailAndRegistrationsDoNothing) {
  auto& provider = H5DynamicProvider::shared();
  EXPECT_EQ(provider.providerDelegate(), nullptr);

  const std::optional<PlatformError> internal = H5ProviderError::internalError().toPlatformError();
  for (auto appType : {AppType::generic, AppType::miniapp}) {
    for (const auto& result :
         {provider.getH5ViewControllerWith(kParams, "app", appType),
          provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, namedNavigation("nav"), "app", appType)}) {
      EXPECT_EQ(result.viewController, nullptr);
      EXPECT_EQ(result.error, internal);
    }
  }
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "app"), nullptr);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nullptr, "app"), nullptr);
  provider.registerBridgeBundleWithName("bundle");
  provider.registerHalcyraBridgeBundleWithName("bundle");
  EXPECT_EQ(provider.providerDelegate(), nullptr);
}

TEST_F(ContainerTest, WithADelegateEveryOperationIsForwardedUnchanged) {
  auto stub = std::make_shared<StubProvider>();
  auto& provider = H5DynamicProvider::shared();
  provider.setupWith(stub);

  auto withType = provider.getH5ViewControllerWith(kParams, "app-1", AppType::miniapp);
  EXPECT_EQ(withType.viewController, stub->answer);
  EXPECT_FALSE(withType.error.has_value());
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "app-2"), stub->answer);
  auto nav = namedNavigation("nav");
  auto flagsWithType = provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nav, "app-3", AppType::generic);
  EXPECT_EQ(flagsWithType.viewController, stub->answer);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nullptr, "app-4"), stub->answer);
  provider.registerBridgeBundleWithName("storage");
  provider.registerHalcyraBridgeBundleWithName("location");

  const std::string params = R"({"url":"https://m.example.com/","appId":"sub"})";
  const std::vector<std::string> expected{
      "withAppType {\"params\":" + params + ",\"id\":\"app-1\",\"appType\":\"miniapp\"}",
      "plain {\"params\":" + params + ",\"id\":\"app-2\"}",
      "flagsWithAppType {\"params\":" + params +
          R"(,"web":{"allowsInlineMediaPlayback":true},"bars":{"showTitleBar":false},"nav":"nav","id":"app-3",)"
          R"("appType":"generic"})",
      "flags {\"params\":" + params +
          R"(,"web":{"allowsInlineMediaPlayback":true},"bars":{"showTitleBar":false},"nav":"-","id":"app-4"})",
      R"(register {"name":"storage"})",
      R"(registerHalcyra {"name":"location"})",
  };
  EXPECT_EQ(stub->calls, expected);
}

TEST_F(ContainerTest, ADelegatesOwnErrorPassesThroughUnchanged) {
  auto stub = std::make_shared<StubProvider>();
  H5DynamicProvider::shared().setupWith(stub);
  for (const PlatformError& error : {H5ProviderError::appIDWhitelistingError().toPlatformError(),
                                     PlatformError{"HostContainer", 42, "no config", "because", Dict{{"k", 1}}}}) {
    stub->error = error;
    auto result = H5DynamicProvider::shared().getH5ViewControllerWith(kParams, "app", AppType::generic);
    EXPECT_EQ(result.viewController, nullptr);
    EXPECT_EQ(result.error, error);
    result = H5DynamicProvider::shared().getH5ViewControllerWith(kParams, {}, {}, nullptr, "app", AppType::miniapp);
    EXPECT_EQ(result.error, error);
  }
}

TEST_F(ContainerTest, ReplacingOrRemovingTheDelegateTakesEffectForTheNextRequest) {
  auto first = std::make_shared<StubProvider>();
  auto second = std::make_shared<StubProvider>();
  auto& provider = H5DynamicProvider::shared();
  provider.setupWith(first);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "a"), first->answer);
  provider.setupWith(second);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "b"), second->answer);
  EXPECT_EQ(first->calls.size(), 1u);
  EXPECT_EQ(second->calls.size(), 1u);

  provider.setupWith(nullptr);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "c"), nullptr);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "c", AppType::generic).error->code, 5);

  provider.setupWith(first);
  resetSharedStateForTesting();
  EXPECT_EQ(provider.providerDelegate(), nullptr);
}

// --- Configs and the presenter helper.

TEST(H5ProviderConfigTest, DefaultsChangeNothing) {
  // What each constructor forwards is pinned by the presenter helper test.
  for (const H5ProviderConfig& config :
       {H5ProviderConfig(kParams, "app", nullptr), H5ProviderConfig(kParams, "app", kWebFlags, kBarFlags, nullptr, nullptr)}) {
    EXPECT_FALSE(config.hideTabBar || config.hideBottomBar || config.hideNavigationBar);
    EXPECT_EQ(config.bgColor, std::nullopt);
  }
}

TEST_F(ContainerTest, PresenterHelperPicksTheProviderOperationByTheConfigsFlag) {
  H5ProviderConfig config(kParams, "app", nullptr);
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(config), nullptr);

  auto stub = std::make_shared<StubProvider>();
  H5DynamicProvider::shared().setupWith(stub);
  // Flags assigned after the short constructor are not sent...
  config.webViewFlags = kWebFlags;
  config.navigationController = namedNavigation("nav");
  config.hideTabBar = true;
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(config), stub->answer);
  // ...until the flag is set by hand.
  config.shouldCallCustomizationMethod = true;
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(config), stub->answer);
  H5ProviderConfig flagged(kParams, "app-2", {}, kBarFlags, nullptr, nullptr);
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(flagged), stub->answer);

  const std::string params = R"({"url":"https://m.example.com/","appId":"sub"})";
  const std::vector<std::string> expected{
      "plain {\"params\":" + params + ",\"id\":\"app\"}",
      "flags {\"params\":" + params +
          R"(,"web":{"allowsInlineMediaPlayback":true},"bars":{},"nav":"nav","id":"app"})",
      "flags {\"params\":" + params + R"(,"web":{},"bars":{"showTitleBar":false},"nav":"-","id":"app-2"})",
  };
  EXPECT_EQ(stub->calls, expected);
  // The helper leaves presentation to the presenter.
  EXPECT_FALSE(stub->answer->hidesBottomBarWhenPushed());
  EXPECT_EQ(stub->answer->viewIfLoaded(), nullptr);
}

/// A container screen inside a navigation controller inside a tab bar
/// controller, all simulated.
struct ContainerScreen {
  std::shared_ptr<sim::SimTabBarController> tabs;
  std::shared_ptr<sim::SimNavigationController> nav;
  std::shared_ptr<sim::SimViewController> screen;

  explicit ContainerScreen(const std::shared_ptr<sim::EffectLog>& log)
      : tabs(std::make_shared<sim::SimTabBarController>(log)),
        nav(std::make_shared<sim::SimNavigationController>(log)),
        screen(std::make_shared<sim::SimViewController>(log)) {
    tabs->setName("tabs");
    nav->setName("nav");
    screen->setName("container");
    tabs->addChild(nav);
    nav->pushViewController(screen, false);
  }
};

TEST_F(ContainerTest, ApplyingAConfigChangesOnlyWhatItAsksFor) {
  const Color red{1, 0, 0, 1};
  struct Case {
    const char* name;
    bool hideTabBar, hideBottomBar, hideNavigationBar;
    std::optional<Color> bgColor;
  };
  const Case kCases[] = {
      {"nothing", false, false, false, std::nullopt},
      {"tab bar", true, false, false, std::nullopt},
      {"bottom bar", false, true, false, std::nullopt},
      {"navigation bar", false, false, true, std::nullopt},
      {"colour", false, false, false, red},
      {"everything", true, true, true, red},
  };
  for (const auto& c : kCases) {
    ContainerScreen ui(device.effects());
    device.effects()->take();
    H5ProviderConfig config({}, "app", nullptr);
    config.hideTabBar = c.hideTabBar;
    config.hideBottomBar = c.hideBottomBar;
    config.hideNavigationBar = c.hideNavigationBar;
    config.bgColor = c.bgColor;
    config.applyConfigurationsOn(*ui.screen);

    EXPECT_EQ(ui.tabs->tabBar()->isHidden(), c.hideTabBar) << c.name;
    EXPECT_EQ(ui.screen->hidesBottomBarWhenPushed(), c.hideBottomBar) << c.name;
    EXPECT_EQ(ui.nav->navigationBar()->isHidden(), c.hideNavigationBar) << c.name;
    if (c.bgColor) {
      ASSERT_NE(ui.screen->viewIfLoaded(), nullptr) << c.name;
      EXPECT_EQ(ui.screen->viewIfLoaded()->backgroundColor(), c.bgColor) << c.name;
      auto effects = device.effects()->take();
      ASSERT_EQ(effects.size(), 1u) << c.name;
      EXPECT_EQ(effects[0], (Dict{{"effect", "view"}, {"view", "container.view"}, {"change", "backgroundColor"},
                                  {"value", "#ff0000"}}));
    } else {
      // The root view is not even loaded.
      EXPECT_EQ(ui.screen->viewIfLoaded(), nullptr) << c.name;
    }
  }
}

TEST_F(ContainerTest, ApplyingAConfigNeverShowsOrClearsAnythingAndSkipsMissingBars) {
  ContainerScreen ui(device.effects());
  ui.tabs->tabBar()->setHidden(true);
  ui.nav->navigationBar()->setHidden(true);
  ui.screen->setHidesBottomBarWhenPushed(true);
  ui.screen->view()->setBackgroundColor(Color{0, 0, 1, 1});
  H5ProviderConfig config({}, "app", nullptr);
  config.applyConfigurationsOn(*ui.screen);
  EXPECT_TRUE(ui.tabs->tabBar()->isHidden() && ui.nav->navigationBar()->isHidden());
  EXPECT_TRUE(ui.screen->hidesBottomBarWhenPushed());
  EXPECT_EQ(ui.screen->view()->backgroundColor(), (Color{0, 0, 1, 1}));

  // A screen without bar controllers still gets the rest.
  auto screen = std::make_shared<sim::SimViewController>(device.effects());
  config.hideTabBar = config.hideBottomBar = config.hideNavigationBar = true;
  config.bgColor = Color{0, 1, 0, 0.5};
  config.applyConfigurationsOn(*screen);
  EXPECT_TRUE(screen->hidesBottomBarWhenPushed());
  EXPECT_EQ(screen->view()->backgroundColor(), (Color{0, 1, 0, 0.5}));
  // A navigation controller is not its own navigation controller.
  auto nav = namedNavigation("root");
  config.applyConfigurationsOn(*nav);
  EXPECT_FALSE(nav->navigationBar()->isHidden());
}

}  // namespace
}  // namespace vantu
