// The three storage bridges through the registry, on the real store.

#include <fstream>

#include "tests/storage/storage_fixture.h"
#include "vantu/storage/secure_string_hasher.h"

namespace vantu::testing_support {
namespace {

Dict flat(std::string_view message) { return Dict{{"error", 2}, {"message", message}}; }

class StorageBridges : public StorageFixture {};

// The round trip's answers are pinned by runner case 15; here, where the values go.
TEST_F(StorageBridges, ValuesAreStoredUnderTheHashedAppIdOfTheNearestAncestor) {
  auto parent = screenOf("parent.app");
  auto child = screenOf(std::nullopt);
  parent->addChild(child);
  const std::vector<Value> ok{Dict{{"data", Dict{}}}};
  EXPECT_EQ(call("vantuSaveData", Dict{{"data", Dict{{"theme", "dark"}, {"count", 3}}}}, child), ok);
  EXPECT_EQ(call("vantuRemoveData", Dict{{"keys", Array{"theme"}}}, child), ok);
  EXPECT_EQ(keysOf(sandboxDomainName("parent.app")), (std::vector<std::string>{"count"}));
}

TEST_F(StorageBridges, AnswersArriveOnTheMainQueueAfterTheStoreWork) {
  auto page = screenOf("shop.mini");
  std::vector<Value> answers;
  BridgeRegistry registry;
  registerAllBridges(registry);
  registry.dispatch("vantuSaveData", H5HandlerInputParams(page, Dict{{"data", Dict{{"k", 1}}}},
                                                          [&](const Value& answer) { answers.push_back(answer); }));
  EXPECT_TRUE(answers.empty());
  settle();
  EXPECT_EQ(answers.size(), 1u);
}

TEST_F(StorageBridges, RefusalsComeInOrderWithTheirExactTexts) {
  struct Case {
    std::string bridge;
    Dict data;
    std::shared_ptr<ViewController> screen;
    std::string message;
  };
  auto page = screenOf("app");
  auto anonymous = screenOf(std::nullopt);
  const std::string noScreen = "VH5FilePickerHandler: Failed to bind params.viewController!";
  // Further refusals (keys not an array, empty keys on remove, data an array) are pinned by runner case 15.
  std::vector<Case> cases = {
      // No screen comes before everything, even bad arguments; no app id comes before the arguments.
      {"vantuGetData", Dict{}, nullptr, noScreen}, {"vantuSaveData", Dict{}, nullptr, noScreen},
      {"vantuRemoveData", Dict{}, nullptr, noScreen}, {"vantuGetData", Dict{}, anonymous, "Failed to obtain uAId!"},
      {"vantuSaveData", Dict{{"data", "x"}}, anonymous, "Failed to obtain uAId!"},
      {"vantuRemoveData", Dict{}, anonymous, "Failed to obtain uAId!"},
      {"vantuGetData", Dict{}, page, "Nil or empty keys received for get op"},
      {"vantuGetData", Dict{{"keys", Array{}}}, page, "Nil or empty keys received for get op"},
      {"vantuGetData", Dict{{"keys", Array{"a", 1}}}, page, "Nil or empty keys received for get op"},
      {"vantuRemoveData", Dict{{"keys", "a"}}, page, "Nil or empty keys received for delete op"},
      {"vantuSaveData", Dict{}, page, "Failed to bind json object data passed!"},
      {"vantuSaveData", Dict{{"data", "{}"}}, page, "Failed to bind json object data passed!"},
      {"vantuSaveData", Dict{{"data", Dict{{1, "native key"}}}}, page, "Failed to bind json object data passed!"},
  };
  for (auto& c : cases) {
    std::vector<Value> answers;
    BridgeRegistry registry;
    registerAllBridges(registry);
    registry.dispatch(c.bridge, H5HandlerInputParams(c.screen, c.data, [&](const Value& a) { answers.push_back(a); }));
    // Early refusals are synchronous.
    EXPECT_EQ(answers, std::vector<Value>{flat(c.message)}) << c.bridge << " " << c.message;
  }
  settle();
  EXPECT_TRUE(keysOf(std::string(UserDefaultsAccessTracker::kSuiteName)).empty());
}

TEST_F(StorageBridges, AppsNeverSeeEachOthersValues) {
  const std::vector<std::string> ids = {"app",   "App",  "APP",    "app_1", "app/1", "app\\1", std::string("app\0x", 5),
                                        std::string("app\0", 4), "应用", "app ", " app",  "",      "a.p.p"};
  auto own = [](std::size_t i) { return Dict{{"shared", static_cast<std::int64_t>(i)}}; };
  for (std::size_t i = 0; i < ids.size(); ++i) {
    ASSERT_EQ(call("vantuSaveData", Dict{{"data", own(i)}}, screenOf(ids[i])), (std::vector<Value>{Dict{{"data", Dict{}}}}));
  }
  for (std::size_t i = 0; i < ids.size(); ++i) {
    EXPECT_EQ(call("vantuGetData", Dict{{"keys", Array{"shared"}}}, screenOf(ids[i])), (std::vector<Value>{Dict{{"data", own(i)}}})) << i;
  }
}

TEST_F(StorageBridges, GetAnswersAfterItsHandlerIsGoneButSaveAndRemoveDoNot) {
  auto page = screenOf("app");
  for (auto [bridge, data, answersExpected] :
       std::vector<std::tuple<std::string, Dict, std::size_t>>{{"vantuGetData", Dict{{"keys", Array{"k"}}}, 1},
                                                               {"vantuSaveData", Dict{{"data", Dict{{"k", 1}}}}, 0},
                                                               {"vantuRemoveData", Dict{{"keys", Array{"k"}}}, 0}}) {
    std::vector<Value> answers;
    {
      BridgeRegistry registry;
      registerAllBridges(registry);
      registry.dispatch(bridge, H5HandlerInputParams(page, data, [&](const Value& a) { answers.push_back(a); }));
    }  // the registry and its handlers are gone before the store runs
    settle();
    EXPECT_EQ(answers.size(), answersExpected) << bridge;
  }
  // The save itself still happened; only its answer was dropped.
  EXPECT_TRUE(keysOf(sandboxDomainName("app")).empty());  // removed by the last call
}

TEST_F(StorageBridges, AStoreThatCannotOpenOrIsCorruptFailsEachBridgeWithoutCrashing) {
  std::filesystem::create_directories(device.dataDirectory() / "corrupt");
  std::ofstream(device.dataDirectory() / "blocker") << "a file where the data directory should be";
  {
    std::ofstream garbage(device.dataDirectory() / "corrupt" / "preferences.sqlite3", std::ios::binary);
    for (int i = 0; i < 8192; ++i) garbage.put(static_cast<char>(i * 31 + 7));
  }
  for (const auto& dir : {device.dataDirectory() / "blocker" / "data", device.dataDirectory() / "corrupt"}) {
    SCOPED_TRACE(dir.string());
    sim::SimDevice broken(dir);
    broken.install();
    auto run = [&](std::string_view bridge, Dict data) {
      std::vector<Value> answers;
      BridgeRegistry registry;
      registerAllBridges(registry);
      registry.dispatch(bridge,
                        H5HandlerInputParams(screenOf("app"), std::move(data), [&](const Value& a) { answers.push_back(a); }));
      broken.dispatch().runReady();
      return answers;
    };
    EXPECT_EQ(run("vantuSaveData", Dict{{"data", Dict{{"k", 1}}}}), std::vector<Value>{flat("Failed to set data against key!")});
    EXPECT_EQ(run("vantuGetData", Dict{{"keys", Array{"k"}}}), std::vector<Value>{flat("Failed to get data!")});
    EXPECT_EQ(run("vantuRemoveData", Dict{{"keys", Array{"k"}}}), std::vector<Value>{flat("Failed to delete value against key")});
    resetSharedStateForTesting();
  }
  device.install();
}

}  // namespace
}  // namespace vantu::testing_support
