// Power cuts during saves of the SQLite preferences store: the store writes
// through a VFS that loses whatever was not synced when the power goes (see
// power_cut_vfs.h). A save is acknowledged as the data store acknowledges it,
// once `set` and `synchronize` both succeeded. After every cut the store
// must reopen, pass SQLite's integrity check, and hold every acknowledged
// save; the save in flight is there whole or not at all.

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>

#include "platforms/store/sqlite_preferences.h"
#include "tests/storage/power_cut_vfs.h"

namespace vantu {
namespace {

namespace fs = std::filesystem;
using testing_support::PowerCutVfs;

constexpr int kCycles = 1200;
constexpr int kSavesPerCycle = 12;
/// Every so many cycles the database starts over, so that checking every
/// acknowledged save after each cut stays cheap.
constexpr int kCyclesPerDatabase = 40;

/// A value whose size varies from nothing to several database pages, so the
/// log grows, spills over pages and is checkpointed now and then.
std::string payload(std::int64_t n, std::mt19937& random) {
  const std::size_t length = random() % 8 == 0 ? random() % 9000 : random() % 200;
  return std::string(length, static_cast<char>('a' + n % 26));
}

/// SQLite's own verdict on the database, opened as the next run of the app
/// would open it (which recovers the log).
std::string integrityOf(const fs::path& database) {
  sqlite3* db = nullptr;
  std::string result = "cannot open";
  if (sqlite3_open_v2(database.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &stmt, nullptr) == SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW) {
      result = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0));
    }
    sqlite3_finalize(stmt);
  }
  sqlite3_close(db);
  return result;
}

struct Tally {
  int cutsInSaves = 0;
  int cutsInClose = 0;
  std::size_t changesLost = 0;
  std::int64_t acknowledged = 0;
};

TEST(PowerLoss, NoAcknowledgedSaveIsLostAndTheStoreAlwaysReopens) {
  std::string pattern = (fs::temp_directory_path() / "vantu-power-loss-XXXXXX").string();
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  const fs::path dir = pattern;
  const auto seed = static_cast<std::uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  PowerCutVfs vfs(seed);
  const PowerCutVfs::Loss losses[] = {PowerCutVfs::Loss::all, PowerCutVfs::Loss::tornLast, PowerCutVfs::Loss::some};

  // What the disk must hold: every acknowledged save's key, with its value.
  std::vector<std::pair<std::string, std::string>> acknowledged;
  std::int64_t saveNumber = 0;
  Tally tally;
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    SCOPED_TRACE("cycle " + std::to_string(cycle));
    if (cycle % kCyclesPerDatabase == 0) {
      vfs.settle(PowerCutVfs::Loss::all);
      for (const auto& entry : fs::directory_iterator(dir)) fs::remove(entry.path());
      acknowledged.clear();
    }
    // The n-th change or sync from here on fails: the opening, a save, or the close.
    vfs.cutAfter(1 + random() % 90);
    std::int64_t inFlight = -1;
    std::string inFlightValue;
    {
      int logged = 0;
      store::SqlitePreferences prefs(store::SqlitePreferencesOptions{dir, [&](std::string_view) { ++logged; }});
      auto suite = prefs.suite("power.app");
      for (int i = 0; suite && i < kSavesPerCycle && !vfs.powerIsOut(); ++i) {
        const std::int64_t n = saveNumber++;
        const std::string key = "k" + std::to_string(n);
        const std::string value = payload(n, random);
        inFlight = n, inFlightValue = value;
        PreferenceValue::Map entries{{key, value}, {"last", n}};
        if (suite->set(std::move(entries)).ok() && suite->synchronize().ok()) {
          acknowledged.emplace_back(key, value);
          ++tally.acknowledged;
          inFlight = -1;
        }
      }
      vfs.powerIsOut() ? ++tally.cutsInSaves : ++tally.cutsInClose;
      // Closing checkpoints the log into the database and removes it: the
      // cut may come there too, or else right after.
    }
    vfs.cutNow();
    tally.changesLost += vfs.settle(losses[random() % 3]);

    // (A cut before the database file was first created leaves none, and nothing to keep.)
    const fs::path database = dir / store::SqlitePreferences::kFileName;
    if (fs::exists(database) || !acknowledged.empty()) ASSERT_EQ(integrityOf(database), "ok");
    store::SqlitePreferences reopened(store::SqlitePreferencesOptions{dir, [](std::string_view) {}});
    auto suite = reopened.suite("power.app");
    ASSERT_TRUE(suite) << "the store does not reopen";
    for (const auto& [key, value] : acknowledged) {
      auto stored = suite->get(key);
      ASSERT_TRUE(stored.ok()) << stored.error().message;
      ASSERT_TRUE(stored.value() == PreferenceValue(value)) << key << " is lost or changed";
    }
    // The save in flight went in whole ("last" names it only with its key) or not at all.
    auto last = suite->get("last");
    ASSERT_TRUE(last.ok());
    if (inFlight >= 0 && last.value() == PreferenceValue(inFlight)) {
      auto stored = suite->get("k" + std::to_string(inFlight));
      ASSERT_TRUE(stored.ok() && stored.value() == PreferenceValue(inFlightValue));
    }
  }
  // The cuts must fall among the saves, and lose writes, or the test proves nothing.
  EXPECT_GT(tally.cutsInSaves, kCycles / 2);
  EXPECT_GT(tally.changesLost, std::size_t(kCycles));
  RecordProperty("cutsInSaves", tally.cutsInSaves);
  RecordProperty("acknowledgedSaves", int(tally.acknowledged));
  std::printf("power cuts: %d during saves, %d at or after close; %zu unsynced changes lost; %lld saves acknowledged\n",
              tally.cutsInSaves, tally.cutsInClose, tally.changesLost, static_cast<long long>(tally.acknowledged));
  std::error_code ignored;
  fs::remove_all(dir, ignored);
}

}  // namespace
}  // namespace vantu
