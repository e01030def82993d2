// The access tracker and the data store on the real SQLite store, with migration and clearing.

#include "tests/storage/storage_fixture.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/storage/secure_string_hasher.h"

namespace vantu::testing_support {
namespace {

UserDefaultsAccessTracker tracker() {
  return UserDefaultsAccessTracker{std::string(UserDefaultsAccessTracker::kSuiteName)};
}

using AccessTracker = StorageFixture;

TEST_F(AccessTracker, ListsNewAndOldNamesAndClearsEveryNameWithAnUnderscore) {
  auto t = tracker();
  for (auto name : {"x_flh5", "abc_1", "plain", "abc_1"}) t.trackAccessFor(name);
  EXPECT_EQ(t.getAllDomainsNew(), Strings{"x_flh5"});
  EXPECT_EQ(t.getAllDomainsOld(), (Strings{"abc_1", "x_flh5"}));
  EXPECT_EQ(t.getAllKeysIncludingMeta(), (Strings{"abc_1", "plain", "x_flh5"}));
  t.clearDomains();
  EXPECT_EQ(t.getAllKeysIncludingMeta(), Strings{"plain"});
  EXPECT_EQ(*suite("_bedhjwbde33_Access_Tracking")->get("plain").value(), PreferenceValue(true));
}

TEST_F(AccessTracker, IsInertWhenItsSuiteCannotBeOpened) {
  UserDefaultsAccessTracker t{""};  // a name the store refuses
  t.trackAccessFor("x_flh5");
  EXPECT_TRUE(t.getAllDomainsOld().empty() && t.getAllDomainsNew().empty());
  t.clearDomains();
  EXPECT_EQ(t.userDefaults(), nullptr);
}

class DataStore : public StorageFixture {
 protected:
  const std::string app1 = sandboxDomainName("app1");
  Strings tracked() { return keysOf(std::string(UserDefaultsAccessTracker::kSuiteName)); }
};

TEST_F(DataStore, ReadsBackEveryKindDatesAsIsoTextAndMissingKeysAsEmptyText) {
  // Text, numbers, lists and dicts as a page sends them are pinned through the bridges by runner case 15.
  Dict data{{"i", 1}, {"d", 1.0}, {"b", true}, {"bytes", Bytes{{1, 2}}}, {"arr", Array{1, 1.5, false, Dict{}}}};
  ASSERT_TRUE(save(app1, data).success);
  ASSERT_TRUE(suite(app1)->set("when", PreferenceDate{1714552200.25}).ok());  // as native code stores dates
  auto got = get(app1, {"i", "d", "b", "bytes", "arr", "when", "missing", "i"});
  EXPECT_TRUE(got.calls == 1 && got.success && !got.error);
  data.set("when", "2024-05-01T08:30:00.250Z");
  data.set("missing", "");
  EXPECT_EQ(got.result, (Dict{{"data", data}}));  // Value equality tells 1 from 1.0
}

TEST_F(DataStore, EveryOperationTracksItsDomainEvenWithNothingToDo) {
  const std::string other = sandboxDomainName("other"), never = sandboxDomainName("never.saved");
  EXPECT_TRUE(save(app1, Dict{}).success);
  EXPECT_TRUE(remove(other, {"never-set"}).success);
  EXPECT_TRUE(get(never, {"k"}).success);
  Strings all{app1, other, never};
  std::sort(all.begin(), all.end());
  EXPECT_EQ(tracked(), all);
}

TEST_F(DataStore, OperationsRunInSubmissionOrder) {
  Strings order;
  auto done = [&](std::string what) { return [&, what](bool, std::optional<PlatformError>) { order.push_back(what); }; };
  auto read = [&](bool, std::optional<PlatformError>, Dict result) { order.push_back("get " + json::write(result)); };
  store()->saveData(app1, Dict{{"k", 1}}, done("save"));
  store()->getData(app1, {"k"}, read);
  store()->removeData(app1, {"k"}, done("remove"));
  store()->getData(app1, {"k"}, read);
  EXPECT_TRUE(order.empty());  // nothing runs before the queue does
  settle();
  EXPECT_EQ(order, (Strings{"save", R"(get {"data":{"k":1}})", "remove", R"(get {"data":{"k":""}})"}));
}

TEST_F(DataStore, WorkQueuedByAStoreThatIsGoneNeverCompletes) {
  int calls = 0;
  auto own = UserDefaultsDataStoreImpl::make();
  own->saveData(app1, Dict{{"k", 1}}, [&](bool, std::optional<PlatformError>) { ++calls; });
  own.reset();
  settle();
  EXPECT_EQ(calls, 0);
  EXPECT_FALSE(suite(app1)->get("k").value().has_value());
}

// Each bridge's failure on an unusable store is pinned by the storage bridge test; here, the error itself.
TEST_F(DataStore, AnUnopenableSuiteCompletesWithStoreErrorAndIsNotTracked) {
  const std::string refused(300, 'x');  // over the store's cap, refused as a damaged store would be
  auto got = get(refused, {"a"});
  EXPECT_FALSE(got.success);
  EXPECT_EQ(got.error, (PlatformError{"h5-ios", 0, "User Defaults could not be initialized"}));
  EXPECT_EQ(save(refused, Dict{{"a", 1}}).error, storeError());
  EXPECT_TRUE(tracked().empty());
}

class Migration : public DataStore {
 protected:
  void migrate() { Laizaxlu::shared().performSandboxMigration(), settle(); }
  void oldDomain(const std::string& name, PreferenceValue::Map values) {
    ASSERT_TRUE(suite(name)->set(std::move(values)).ok());
    tracker().trackAccessFor(name);
  }
  bool flagSet() {
    auto flag = preferences().standard()->get("h5_data_snd_box_mig");
    return flag.ok() && flag.value() && *flag.value() == PreferenceValue(true);
  }
};

// One run moves each tracked old domain by its own rule.
TEST_F(Migration, MovesOldDomainsByTheWhitelistOrTheAppIdBeforeTheFirstUnderscoreOverwritingKeys) {
  Laizaxlu::shared().setupWhiteListAppData({{"shop.app", "shop_domain"}, {"other", "x"}});
  oldDomain("shop_domain", {{"k", 1}});
  auto target = sandboxDomainName("abc");
  ASSERT_TRUE(suite(target)->set(PreferenceValue::Map{{"k", "new"}, {"keep", 1}}).ok());  // not tracked
  oldDomain("abc_xyz", {{"k", "v"}, {"n", 2}});
  oldDomain("_xyz", {{"k", "skipped"}});
  // A tracked hashed name is taken for an old one too, and moved to the hash of its digits.
  auto hashed = sandboxDomainName("early.app");
  ASSERT_TRUE(save(hashed, Dict{{"k", 1}}).success);
  migrate();
  EXPECT_EQ(keysOf(sandboxDomainName("shop.app")), Strings{"k"});
  EXPECT_TRUE(keysOf(sandboxDomainName("shop")).empty());
  EXPECT_EQ(get(target, {"k", "n", "keep"}).result, (Dict{{"data", Dict{{"k", "v"}, {"n", 2}, {"keep", 1}}}}));
  EXPECT_TRUE(keysOf("abc_xyz").empty());
  EXPECT_EQ(keysOf("_xyz"), Strings{"k"});
  EXPECT_TRUE(keysOf(hashed).empty());
  EXPECT_EQ(keysOf(sandboxDomainName(hashed.substr(0, 40))), Strings{"k"});
  auto names = tracked();
  auto times = [&](const std::string& n) { return std::count(names.begin(), names.end(), n); };
  EXPECT_EQ((std::vector{times("abc_xyz"), times(target), times("_xyz")}), (std::vector<std::ptrdiff_t>{0, 1, 1}));
  EXPECT_TRUE(flagSet());
}

// The second run finds the stored flag and moves nothing.
TEST_F(Migration, SetsTheFlagWithNothingToMoveAndDoesNotMoveLaterDomains) {
  migrate();
  EXPECT_TRUE(flagSet());
  oldDomain("late_one", {{"k", 1}});
  migrate();
  EXPECT_EQ(keysOf("late_one"), Strings{"k"});
}

class Clearing : public DataStore {
 protected:
  void clear() { Laizaxlu::shared().clearAppSandbox(), settle(); }
  void clear(std::optional<Dict> exempt) { Laizaxlu::shared().clearAppSandbox(std::move(exempt)), settle(); }
};

TEST_F(Clearing, KeepsExemptedUntrackedAndOldStyleDataButForgetsEveryTrackedDomain) {
  for (auto id : {"app1", "app2", "app3"}) ASSERT_TRUE(save(sandboxDomainName(id), Dict{{"k", id}}).success);
  ASSERT_TRUE(suite("legacy_domain")->set("k", 1).ok());
  tracker().trackAccessFor("legacy_domain");
  ASSERT_TRUE(suite(sandboxDomainName("untracked"))->set("k", 1).ok());
  const std::string kept[] = {sandboxDomainName("app1"), "legacy_domain", sandboxDomainName("untracked")};
  auto allKept = [&] { for (const auto& domain : kept) EXPECT_EQ(keysOf(domain), Strings{"k"}) << domain; };
  clear(Dict{{"app1", "ignored value"}});
  allKept();
  EXPECT_TRUE(keysOf(sandboxDomainName("app2")).empty() && keysOf(sandboxDomainName("app3")).empty());
  EXPECT_TRUE(tracked().empty());

  // Untracked now, app1's data survives the next full clearing, as does tracked old-style data...
  tracker().trackAccessFor("legacy_domain");
  clear();
  allKept();
  // ...until the page touches it again.
  get(sandboxDomainName("app1"), {"k"});
  clear(std::nullopt);
  EXPECT_TRUE(keysOf(sandboxDomainName("app1")).empty());
}

}  // namespace
}  // namespace vantu::testing_support
