// Values attached to screens, their lookup through the containment chain,
// and finding a screen's web view.

#include "vantu/core/view_controller_context.h"

#include <memory>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/app_type.h"
#include "vantu/core/h5_web_view_extractor.h"

namespace vantu {
namespace {

using ContextTest = testing_support::BridgeTestFixture;

/// A containment chain: at(0) is the screen under test, at(1) its parent,
/// at(2) its grandparent, at(3) its great-grandparent; below() is its child.
struct Chain {
  std::vector<std::shared_ptr<ViewController>> levels;
  std::shared_ptr<ViewController> child = std::make_shared<ViewController>();

  Chain() {
    for (int i = 0; i < 4; ++i) levels.push_back(std::make_shared<ViewController>());
    for (int i = 3; i > 0; --i) levels[i]->addChild(levels[i - 1]);
    levels[0]->addChild(child);
  }
  ViewController& at(int distance) { return *levels[distance]; }
  ViewController& self() { return at(0); }
  ViewController& below() { return *child; }
};

// The four lookups share one rule, swept here with isH5 (which also drives extractH5ViewController); the next test
// shows each of the others reading its own value above the screen.
TEST_F(ContextTest, LookupsReachSelfParentAndGrandparentOnly) {
  for (int distance = 0; distance <= 3; ++distance) {
    SCOPED_TRACE(std::to_string(distance) + " levels up");
    Chain chain;
    setIsH5(chain.at(distance), true);
    EXPECT_EQ(isH5ViewController(chain.self()), distance <= 2);
    EXPECT_EQ(extractH5ViewController(chain.self()), distance <= 2 ? chain.levels[distance] : nullptr);
  }
  Chain chain;
  setIsH5(chain.below(), true);
  EXPECT_FALSE(isH5ViewController(chain.self()));
  EXPECT_EQ(extractH5ViewController(chain.self()), nullptr);
}

TEST_F(ContextTest, NearestPresentValueWinsAndPresentFalseStopsTheSearch) {
  Chain chain;
  setUniqueAppIdentifier(chain.at(2), "far");
  setUniqueAppIdentifier(chain.at(1), "near");
  EXPECT_EQ(getUniqueAppIdentifierRecursively(chain.self()), "near");
  EXPECT_EQ(getUniqueAppIdentifier(chain.self()), std::nullopt);

  auto nearDelegate = std::make_shared<Object>();
  auto farDelegate = std::make_shared<Object>();
  setVH5ViewControllerDelegate(chain.at(2), farDelegate);
  setVH5ViewControllerDelegate(chain.self(), nearDelegate);
  EXPECT_EQ(getVH5ViewControllerDelegateRecursively(chain.self()), nearDelegate);
  EXPECT_EQ(getVH5ViewControllerDelegateRecursively(chain.at(1)), farDelegate);

  setIsH5(chain.at(1), true);
  EXPECT_TRUE(isH5ViewController(chain.self()));
  EXPECT_FALSE(getIsH5Val(chain.self()));  // its own value only
  setIsH5(chain.self(), false);
  EXPECT_FALSE(isH5ViewController(chain.self()));
  EXPECT_FALSE(getIsH5Val(chain.self()));
  EXPECT_EQ(extractH5ViewController(chain.self()), chain.levels[1]);  // skips a present false
  // The child has no value of its own: the nearest one is its parent's false.
  EXPECT_FALSE(isH5ViewController(chain.below()));

  setIsHc(chain.at(2), true);
  EXPECT_TRUE(isHcViewController(chain.self()));
  setIsHc(chain.at(1), false);
  EXPECT_FALSE(isHcViewController(chain.self()));
}

TEST_F(ContextTest, NilIsIgnoredForDelegateIdAndIsH5ButClearsIsHcAndSafeAreaFlagsAndAppTypeNeedsExactText) {
  auto vc = std::make_shared<ViewController>();
  auto delegate = std::make_shared<Object>();
  setVH5ViewControllerDelegate(*vc, delegate);
  setVH5ViewControllerDelegate(*vc, nullptr);
  setUniqueAppIdentifier(*vc, "kept");
  setUniqueAppIdentifier(*vc, std::nullopt);
  setIsH5(*vc, false);
  setIsH5(*vc, std::nullopt);
  EXPECT_EQ(getVH5ViewControllerDelegate(*vc), delegate);
  EXPECT_EQ(getUniqueAppIdentifier(*vc), "kept");
  EXPECT_EQ(getIsH5(*vc), false);
  using Set = void (*)(ViewController&, std::optional<bool>);
  using Get = std::optional<bool> (*)(const ViewController&);
  const std::pair<Set, Get> flags[] = {{setIsHc, getIsHc},
                                       {setTopSafeAreaTreatmentRequired, getTopSafeAreaTreatmentRequired},
                                       {setBottomSafeAreaTreatmentRequired, getBottomSafeAreaTreatmentRequired}};
  for (const auto& [set, get] : flags) {
    EXPECT_EQ(get(*vc), std::nullopt);
    set(*vc, false);
    EXPECT_EQ(get(*vc), false);
    set(*vc, std::nullopt);
    EXPECT_EQ(get(*vc), std::nullopt);
  }

  EXPECT_EQ(getAppType(*vc), AppType::generic);
  setAppType(*vc, AppType::miniapp);
  setAppTypeText(*vc, "MiniApp");  // the raw text decides, and only exactly
  EXPECT_EQ(getAppType(*vc), AppType::generic);
  setAppTypeText(*vc, "miniapp");
  EXPECT_EQ(getAppType(*vc), AppType::miniapp);
  EXPECT_EQ(rawValue(AppType::generic), "generic");
  EXPECT_EQ(appTypeFromRawValue("generic"), AppType::generic);
  EXPECT_EQ(appTypeFromRawValue("Generic"), std::nullopt);
}

TEST_F(ContextTest, ReadingContextObjectOrOffsetFixerBeforeSetIsFatal) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  auto vc = std::make_shared<ViewController>();
  EXPECT_DEATH(getContextObject(*vc), "contextObject");
  EXPECT_DEATH(getOffsetFixer(*vc), "offsetFixer");
}

std::string nameOf(const std::shared_ptr<WebView>& webView) { return webView ? webView->name() : "(none)"; }

// Directly: the first web view among the screen's own subviews. Recursively:
// its own first, else depth first through its child screens.
TEST_F(ContextTest, WebViewExtraction) {
  apply(R"({"screens": [
    {"name": "root", "view": {"subviews": [
        {"kind": "view", "name": "box", "subviews": [{"kind": "webView", "name": "rootNested"}]}]},
     "children": [
      {"name": "a", "children": [{"name": "a1", "view": {"subviews": [{"kind": "webView", "name": "a1Web"}]}}]},
      {"name": "b", "view": {"subviews": [{"kind": "webView", "name": "bWeb"}]}}]},
    {"name": "own", "view": {"subviews": [
        {"kind": "view", "name": "box2", "subviews": [{"kind": "webView", "name": "nested"}]},
        {"kind": "webView", "name": "ownWeb"}, {"kind": "webView", "name": "second"}]},
     "children": [{"name": "ownChild", "view": {"subviews": [{"kind": "webView", "name": "childWeb"}]}}]}]})");
  auto direct = [&](const char* screen) { return nameOf(H5WebViewExtractor::extractWebViewFrom(*device.screen(screen))); };
  auto deep = [&](const char* screen) {
    return nameOf(H5WebViewExtractor::extractWebViewRecursivelyFrom(*device.screen(screen)));
  };
  EXPECT_EQ(direct("own"), "ownWeb");
  EXPECT_EQ(direct("root"), "(none)");
  EXPECT_EQ(deep("root"), "a1Web");
  EXPECT_EQ(deep("own"), "ownWeb");
  device.screen("a1")->removeFromParent();
  EXPECT_EQ(deep("root"), "bWeb");
  EXPECT_EQ(deep("a"), "(none)");
}

}  // namespace
}  // namespace vantu
