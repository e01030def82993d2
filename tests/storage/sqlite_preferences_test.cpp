// The SQLite preferences store itself: kinds, order, names, domains, damaged and unreachable databases.

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <limits>

#include "platforms/store/preference_value_codec.h"
#include "platforms/store/sqlite_preferences.h"

namespace vantu::store {
namespace {

struct TempDir {
  std::filesystem::path path = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "vantu-store-test-XXXXXX").string();
    EXPECT_NE(mkdtemp(pattern.data()), nullptr);
    return pattern;
  }();
  ~TempDir() { std::error_code ignored; std::filesystem::remove_all(path, ignored); }
};

struct Store {
  explicit Store(const std::filesystem::path& dir)
      : prefs(SqlitePreferencesOptions{dir, [this](std::string_view line) { logged.emplace_back(line); }}) {}
  SqlitePreferences prefs;
  std::vector<std::string> logged;
};

// A store open on a fresh directory.
class SqlitePreferencesTest : public ::testing::Test {
 protected:
  TempDir dir;
  Store store{dir.path};
};

PreferenceValue sampleNested() {
  using List = PreferenceValue::List;
  return PreferenceValue::Map{{"list", List{1, 1.0, true, "1", PreferenceDate{1.5}, Bytes{{0, 255}}, {}}},
                              {"z", std::int64_t{-1}},
                              {"a", PreferenceValue::Map{{"deep", List{}}}}};
}

// NaN is unequal to itself, so it is checked apart; SQLite keeps it as NULL.
TEST_F(SqlitePreferencesTest, EveryKindComesBackAsTheSameKindFromAnotherConnection) {
  const std::vector<std::pair<std::string, PreferenceValue>> values = {
      {"nul", std::string("a\0b", 3)}, {"empty", ""}, {"true", true}, {"min", std::numeric_limits<std::int64_t>::min()},
      {"one", 1.0}, {"negZero", -0.0}, {"bytes", Bytes{{0, 1, 0, 255}}}, {"noBytes", Bytes{}}, {"null", {}},
      {"date", PreferenceDate{1714552200.25}}, {"nested", sampleNested()},
  };
  auto suite = store.prefs.suite("kinds");
  for (const auto& [key, value] : values) ASSERT_TRUE(suite->set(key, value).ok()) << key;
  ASSERT_TRUE(suite->set("nan", std::numeric_limits<double>::quiet_NaN()).ok());
  Store other(dir.path);
  auto reread = other.prefs.suite("kinds");
  ASSERT_TRUE(reread);
  for (const auto& [key, value] : values) {
    auto read = reread->get(key);
    ASSERT_TRUE(read.ok() && read.value().has_value()) << key;
    EXPECT_EQ(read.value()->kind(), value.kind()) << key;
    EXPECT_EQ(*read.value(), value) << key;
  }
  EXPECT_TRUE(std::signbit(*reread->get("negZero").value()->asDouble()));
  auto nan = reread->get("nan").value();
  EXPECT_TRUE(nan && nan->asDouble() && std::isnan(*nan->asDouble()));
  EXPECT_TRUE(store.logged.empty() && other.logged.empty());
}

TEST_F(SqlitePreferencesTest, KeysAndTheDictionaryRepresentationAreInByteOrder) {
  auto suite = store.prefs.suite("a");
  ASSERT_TRUE(suite->set(PreferenceValue::Map{{"b", 2}, {"a", 1}, {"B", 3}, {"é", 4}, {"", 5}}).ok());
  auto all = suite->dictionaryRepresentation();
  ASSERT_TRUE(all.ok());
  std::vector<std::string> keys;
  for (const auto& [key, value] : all.value()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"", "B", "a", "b", "é"}));
  EXPECT_EQ(suite->keys().value(), keys);
}

TEST_F(SqlitePreferencesTest, BatchesKeepTheLastOfARepeatedKeyAnswerEveryPositionAndRemoveTogether) {
  auto suite = store.prefs.suite("batch");
  PreferenceValue::Map entries{{"k4", "first"}};  // k4 comes again below; the last value wins
  for (int i = 0; i < 50; i += 2) entries.emplace_back("k" + std::to_string(i), i);
  ASSERT_TRUE(suite->set(std::move(entries)).ok());
  std::vector<std::string> keys;  // 0..49 twice, so repeats fall in different batches and the same one
  for (int i = 0; i < 100; ++i) keys.push_back("k" + std::to_string(i % 50));
  keys.insert(keys.end(), {"k4", "k4"});  // twice in one batch
  auto values = suite->get(keys);
  ASSERT_TRUE(values.ok() && values.value().size() == keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const int n = std::stoi(keys[i].substr(1));
    EXPECT_EQ(values.value()[i], n % 2 ? std::nullopt : std::optional(PreferenceValue(n))) << i;
  }
  EXPECT_EQ(store.prefs.suite("absent")->get(keys).value().size(), keys.size());
  std::vector<std::string> removed{"never"};
  for (int i = 0; i < 48; i += 2) removed.push_back("k" + std::to_string(i));
  ASSERT_TRUE(suite->remove(removed).ok());
  EXPECT_EQ(suite->keys().value(), std::vector<std::string>{"k48"});
}

TEST_F(SqlitePreferencesTest, RefusesEmptyOverlongAndNulNamesAndKeepsEveryOtherSuiteApart) {
  EXPECT_FALSE(store.prefs.suite(""));
  EXPECT_FALSE(store.prefs.suite(std::string(SqlitePreferences::kMaxSuiteNameBytes + 1, 'x')));
  EXPECT_FALSE(store.prefs.suite(std::string("a\0b", 3)));
  EXPECT_FALSE(store.prefs.removePersistentDomain(""));
  const std::string names[] = {"a", "A", "名前", "'; DROP TABLE suites; --",
                               std::string(SqlitePreferences::kMaxSuiteNameBytes, 'x')};
  for (const auto& name : names) {
    auto suite = store.prefs.suite(name);
    ASSERT_TRUE(suite) << name;
    ASSERT_TRUE(suite->set(name, name).ok()) << name;
  }
  ASSERT_TRUE(store.prefs.standard()->set("standard", true).ok());  // apart from every named suite too
  for (const auto& name : names) {
    auto suite = store.prefs.suite(name);
    EXPECT_EQ(suite->keys().value(), std::vector<std::string>{name});
    EXPECT_EQ(*suite->get(name).value(), PreferenceValue(name));
  }
  EXPECT_EQ(store.prefs.standard()->keys().value(), std::vector<std::string>{"standard"});
}

TEST_F(SqlitePreferencesTest, RemovingADomainEmptiesItForOpenHandlesAndLeavesOthers) {
  auto gone = store.prefs.suite("gone");
  auto kept = store.prefs.suite("kept");
  ASSERT_TRUE(gone->set("k", 1).ok());
  ASSERT_TRUE(kept->set("k", 2).ok());
  EXPECT_TRUE(store.prefs.removePersistentDomain("gone"));
  EXPECT_TRUE(store.prefs.removePersistentDomain("never-existed"));
  EXPECT_TRUE(gone->keys().value().empty());
  EXPECT_EQ(*kept->get("k").value(), PreferenceValue(2));
  ASSERT_TRUE(gone->set("again", 3).ok());  // a write recreates it
  EXPECT_EQ(store.prefs.suite("gone")->keys().value(), std::vector<std::string>{"again"});
}

TEST_F(SqlitePreferencesTest, WritesAheadToALogAndADatabaseDamagedWhileOpenFailsOperationsWithoutCrashing) {
  auto suite = store.prefs.suite("x");
  PreferenceValue::Map many;
  for (int i = 0; i < 2000; ++i) many.emplace_back("key" + std::to_string(i), std::string(100, 'v'));
  ASSERT_TRUE(suite->set(std::move(many)).ok());
  ASSERT_TRUE(suite->synchronize().ok());
  EXPECT_TRUE(std::filesystem::exists(store.prefs.databasePath().string() + "-wal"));
  // Checkpoint so the pages live in the main file, then overwrite them.
  {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(store.prefs.databasePath().c_str(), &db), SQLITE_OK);
    sqlite3_exec(db, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    std::fstream file(store.prefs.databasePath(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(4096 * 2);
    for (int i = 0; i < 4096 * 20; ++i) file.put(static_cast<char>(0xA5));
  }
  // A fresh store sees the damage when it reads.
  Store fresh(dir.path);
  auto damaged = fresh.prefs.suite("x");
  EXPECT_TRUE(!damaged || !damaged->dictionaryRepresentation().ok() || !damaged->keys().ok() ||
              !damaged->set("new", 1).ok());
  EXPECT_EQ(fresh.logged.size(), 1u);
}

TEST(SqlitePreferences, DecoderRejectsTruncatedTrailingAndUnknownBytes) {
  std::string encoded = encodePreferenceValue(sampleNested());
  ASSERT_EQ(decodePreferenceValue(encoded), sampleNested());
  for (std::size_t cut = 0; cut < encoded.size(); ++cut) {
    EXPECT_FALSE(decodePreferenceValue(std::string_view(encoded).substr(0, cut))) << cut;
  }
  EXPECT_FALSE(decodePreferenceValue(encoded + "n"));
  EXPECT_FALSE(decodePreferenceValue("?"));
  // A huge count with no items behind it.
  EXPECT_FALSE(decodePreferenceValue(std::string("a\xff\xff\xff\xff\x0f", 6)));
}

}  // namespace
}  // namespace vantu::store
