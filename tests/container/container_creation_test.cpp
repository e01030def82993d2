// Creation errors, the container factory, provider configs and the presenter helper.

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
  auto image = H5ProviderError::urlDomainWhitelistingError().getErrorImage();
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->name, "nearby_servertakingtime");
  EXPECT_EQ(image->size, (Size{4, 4}));
  EXPECT_EQ(image->bytes.size(), 4u * 4u * 4u);

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

/// A host provider that records each request as "<operation> <arguments as JSON>" and answers with its own
/// view controller or error.
class StubProvider : public H5ProviderDelegate {
 public:
  std::vector<std::string> calls;
  std::shared_ptr<ViewController> answer = std::make_shared<ViewController>();
  std::optional<PlatformError> error;

  H5ViewControllerResult getH5ViewControllerWith(const Dict& params, const std::string& id, AppType type) override {
    record("withAppType", Dict{{"params", params}, {"id", id}, {"appType", rawValue(type)}});
    return {error ? nullptr : answer, error};
  }
  std::shared_ptr<ViewController> getH5ViewControllerWith(const Dict& params, const std::string& id) override {
    record("plain", Dict{{"params", params}, {"id", id}});
    return answer;
  }
  H5ViewControllerResult getH5ViewControllerWith(const Dict& params, const Dict& web, const Dict& bars,
                                                 const std::shared_ptr<NavigationController>& nav,
                                                 const std::string& id, AppType type) override {
    Dict arguments = flagged(params, web, bars, nav, id);
    arguments.set("appType", rawValue(type));
    record("flagsWithAppType", arguments);
    return {error ? nullptr : answer, error};
  }
  std::shared_ptr<ViewController> getH5ViewControllerWith(const Dict& params, const Dict& web, const Dict& bars,
                                                          const std::shared_ptr<NavigationController>& nav,
                                                          const std::string& id) override {
    record("flags", flagged(params, web, bars, nav, id));
    return answer;
  }
  void registerBridgeBundleWithName(const std::string& name) override { record("register", Dict{{"name", name}}); }
  void registerHalcyraBridgeBundleWithName(const std::string& name) override {
    record("registerHalcyra", Dict{{"name", name}});
  }

 private:
  static Dict flagged(const Dict& params, const Dict& web, const Dict& bars,
                      const std::shared_ptr<NavigationController>& nav, const std::string& id) {
    return Dict{{"params", params}, {"web", web}, {"bars", bars}, {"nav", nav ? nav->name() : "-"}, {"id", id}};
  }
  void record(const char* operation, const Dict& arguments) {
    calls.push_back(std::string(operation) + " " + json::write(Value(arguments)));
  }
};

const Dict kParams{{"url", "https://m/"}, {"appId", "sub"}};
const std::string kParamsJson = R"({"params":{"url":"https://m/","appId":"sub"},)";  // as the stub records it
const Dict kWebFlags{{"allowsInlineMediaPlayback", true}};
const Dict kBarFlags{{"showTitleBar", false}};

std::shared_ptr<NavigationController> namedNavigation(const char* name) {
  auto nav = std::make_shared<NavigationController>();
  nav->setName(name);
  return nav;
}

TEST_F(ContainerTest, RequestsGoToTheCurrentDelegateAndFailWithoutOne) {
  auto& provider = H5DynamicProvider::shared();
  EXPECT_EQ(provider.providerDelegate(), nullptr);
  auto first = std::make_shared<StubProvider>();
  auto second = std::make_shared<StubProvider>();
  provider.setupWith(first);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "a"), first->answer);
  provider.setupWith(second);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "b"), second->answer);

  // Removed: every request fails with the internal error and registrations reach nobody.
  provider.setupWith(nullptr);
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
  EXPECT_EQ(first->calls.size(), 1u);
  EXPECT_EQ(second->calls.size(), 1u);

  provider.setupWith(first);
  resetSharedStateForTesting();
  EXPECT_EQ(provider.providerDelegate(), nullptr);
}

TEST_F(ContainerTest, WithADelegateEveryOperationAndItsErrorIsForwardedUnchanged) {
  auto stub = std::make_shared<StubProvider>();
  auto& provider = H5DynamicProvider::shared();
  provider.setupWith(stub);

  for (const auto& result : {provider.getH5ViewControllerWith(kParams, "app-1", AppType::miniapp),
                             provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, namedNavigation("nav"),
                                                              "app-2", AppType::generic)}) {
    EXPECT_EQ(result.viewController, stub->answer);
    EXPECT_FALSE(result.error.has_value());
  }
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, "app-3"), stub->answer);
  EXPECT_EQ(provider.getH5ViewControllerWith(kParams, kWebFlags, kBarFlags, nullptr, "app-4"), stub->answer);
  provider.registerBridgeBundleWithName("storage");
  provider.registerHalcyraBridgeBundleWithName("location");

  const std::string flags = R"("web":{"allowsInlineMediaPlayback":true},"bars":{"showTitleBar":false},)";
  EXPECT_EQ(stub->calls,
            (std::vector<std::string>{
                "withAppType " + kParamsJson + R"("id":"app-1","appType":"miniapp"})",
                "flagsWithAppType " + kParamsJson + flags + R"("nav":"nav","id":"app-2","appType":"generic"})",
                "plain " + kParamsJson + R"("id":"app-3"})",
                "flags " + kParamsJson + flags + R"("nav":"-","id":"app-4"})",
                R"(register {"name":"storage"})", R"(registerHalcyra {"name":"location"})"}));

  for (const PlatformError& error : {H5ProviderError::appIDWhitelistingError().toPlatformError(),
                                     PlatformError{"HostContainer", 42, "no config", "because", Dict{{"k", 1}}}}) {
    stub->error = error;
    auto result = provider.getH5ViewControllerWith(kParams, "app", AppType::generic);
    EXPECT_EQ(result.viewController, nullptr);
    EXPECT_EQ(result.error, error);
    EXPECT_EQ(provider.getH5ViewControllerWith(kParams, {}, {}, nullptr, "app", AppType::miniapp).error, error);
  }
}

// --- Configs and the presenter helper.

TEST_F(ContainerTest, PresenterHelperPicksTheProviderOperationByTheConfigsFlag) {
  H5ProviderConfig config(kParams, "app", nullptr);
  H5ProviderConfig flagged(kParams, "app-2", {}, kBarFlags, nullptr, nullptr);
  for (const H5ProviderConfig* c : {&config, &flagged}) {  // the defaults change nothing
    EXPECT_FALSE(c->hideTabBar || c->hideBottomBar || c->hideNavigationBar);
    EXPECT_EQ(c->bgColor, std::nullopt);
  }
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
  EXPECT_EQ(H5PresenterHelper::getH5ViewControllerUsingConfig(flagged), stub->answer);

  EXPECT_EQ(stub->calls,
            (std::vector<std::string>{
                "plain " + kParamsJson + R"("id":"app"})",
                "flags " + kParamsJson + R"("web":{"allowsInlineMediaPlayback":true},"bars":{},"nav":"nav","id":"app"})",
                "flags " + kParamsJson + R"("web":{},"bars":{"showTitleBar":false},"nav":"-","id":"app-2"})"}));
  // The helper leaves presentation to the presenter.
  EXPECT_FALSE(stub->answer->hidesBottomBarWhenPushed());
  EXPECT_EQ(stub->answer->viewIfLoaded(), nullptr);
}

TEST_F(ContainerTest, ApplyingAConfigChangesOnlyWhatItAsksFor) {
  const Color red{1, 0, 0, 1};
  const std::string barHidden = R"({"effect":"view","view":"nav.navigationBar","change":"hidden","value":true})";
  const std::string redView = R"({"effect":"view","view":"container.view","change":"backgroundColor","value":"#ff0000"})";
  const struct {
    const char* name;
    bool hideTabBar, hideBottomBar, hideNavigationBar;
    std::optional<Color> bgColor;
    testing_support::Strings effects;
  } kCases[] = {
      {"nothing", false, false, false, std::nullopt, {}},
      {"tab bar", true, false, false, std::nullopt, {}},
      {"bottom bar", false, true, false, std::nullopt, {}},
      {"navigation bar", false, false, true, std::nullopt, {barHidden}},
      {"colour", false, false, false, red, {redView}},
      {"everything", true, true, true, red, {barHidden, redView}},
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
    testing_support::Strings effects;
    for (const Dict& e : device.effects()->take()) effects.push_back(json::write(e));
    EXPECT_EQ(effects, c.effects);
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
  // A navigation controller is not its own navigation controller.
  auto nav = namedNavigation("root");
  config.applyConfigurationsOn(*nav);
  EXPECT_FALSE(nav->navigationBar()->isHidden());
}

}  // namespace
}  // namespace vantu
