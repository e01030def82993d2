// The three storage bridges through the registry, on the real store.

#include <fstream>

#include "tests/storage/storage_fixture.h"
#include "vantu/storage/secure_string_hasher.h"

namespace vantu::testing_support {
namespace {

Dict flat(std::string_view message) { return Dict{{"error", 2}, {"message", message}}; }
const std::vector<Value> kDone{Dict{{"data", Dict{}}}};

using StorageBridges = StorageFixture;

// The round trip's answers are pinned by runner case 15; here, where the values go and when answers come.
TEST_F(StorageBridges, ValuesGoUnderTheHashedAppIdOfTheNearestAncestorAndAnswersFollowTheStoreWork) {
  auto parent = screenOf("parent.app");
  auto child = screenOf(std::nullopt);
  parent->addChild(child);
  auto saved = dispatch("vantuSaveData", Dict{{"data", Dict{{"theme", "dark"}, {"count", 3}}}}, child);
  EXPECT_TRUE(saved->empty());  // answered on the main queue, after the store's work
  settle();
  EXPECT_EQ(*saved, kDone);
  EXPECT_EQ(call("vantuRemoveData", Dict{{"keys", Array{"theme"}}}, child), kDone);
  EXPECT_EQ(keysOf(sandboxDomainName("parent.app")), Strings{"count"});
}

TEST_F(StorageBridges, RefusalsComeAtOnceInOrderWithTheirExactTexts) {
  auto page = screenOf("app");
  auto anonymous = screenOf(std::nullopt);
  const std::string noScreen = "VH5FilePickerHandler: Failed to bind params.viewController!";
  // No screen comes before everything, even bad arguments; no app id comes before the arguments. The other
  // bridge of each pair, keys that are not an array, empty keys on remove and data an array: runner case 15.
  const std::tuple<std::string, Dict, std::shared_ptr<ViewController>, std::string> cases[] = {
      {"vantuSaveData", Dict{}, nullptr, noScreen}, {"vantuRemoveData", Dict{}, nullptr, noScreen},
      {"vantuGetData", Dict{}, anonymous, "Failed to obtain uAId!"},
      {"vantuRemoveData", Dict{}, anonymous, "Failed to obtain uAId!"},
      {"vantuGetData", Dict{{"keys", Array{}}}, page, "Nil or empty keys received for get op"},
      {"vantuSaveData", Dict{{"data", Dict{{1, "native key"}}}}, page, "Failed to bind json object data passed!"},
  };
  for (const auto& [bridge, data, screen, message] : cases) {
    EXPECT_EQ(*dispatch(bridge, data, screen), std::vector<Value>{flat(message)}) << bridge << " " << message;
  }
  settle();
  EXPECT_TRUE(keysOf(std::string(UserDefaultsAccessTracker::kSuiteName)).empty());
}

TEST_F(StorageBridges, AppsNeverSeeEachOthersValues) {
  const Strings ids = {"app",  "App", "APP", "app_1", "app/1", "app\\1", std::string("app\0x", 5),
                       std::string("app\0", 4), "应用", "app ", " app", "", "a.p.p"};
  auto own = [](std::size_t i) { return Dict{{"shared", static_cast<std::int64_t>(i)}}; };
  for (std::size_t i = 0; i < ids.size(); ++i) {
    ASSERT_EQ(call("vantuSaveData", Dict{{"data", own(i)}}, screenOf(ids[i])), kDone);
  }
  for (std::size_t i = 0; i < ids.size(); ++i) {
    EXPECT_EQ(call("vantuGetData", Dict{{"keys", Array{"shared"}}}, screenOf(ids[i])),
              (std::vector<Value>{Dict{{"data", own(i)}}})) << i;
  }
}

TEST_F(StorageBridges, GetAnswersAfterItsHandlerIsGoneButSaveAndRemoveDoNot) {
  auto page = screenOf("app");
  const std::tuple<std::string, Dict, std::size_t> cases[] = {{"vantuGetData", Dict{{"keys", Array{"k"}}}, 1},
                                                              {"vantuSaveData", Dict{{"data", Dict{{"k", 1}}}}, 0},
                                                              {"vantuRemoveData", Dict{{"keys", Array{"k"}}}, 0}};
  for (const auto& [bridge, data, answersExpected] : cases) {
    auto answers = dispatch(bridge, data, page, /*keepHandlers=*/false);
    settle();
    EXPECT_EQ(answers->size(), answersExpected) << bridge;
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
      auto answers = dispatch(bridge, std::move(data), screenOf("app"));
      broken.dispatch().runReady();
      return *answers;
    };
    EXPECT_EQ(run("vantuSaveData", Dict{{"data", Dict{{"k", 1}}}}), std::vector<Value>{flat("Failed to set data against key!")});
    EXPECT_EQ(run("vantuGetData", Dict{{"keys", Array{"k"}}}), std::vector<Value>{flat("Failed to get data!")});
    EXPECT_EQ(run("vantuRemoveData", Dict{{"keys", Array{"k"}}}), std::vector<Value>{flat("Failed to delete value against key")});
    registries_.clear();
    resetSharedStateForTesting();
  }
  device.install();
}

}  // namespace
}  // namespace vantu::testing_support
