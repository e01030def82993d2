#pragma once
// The preferences port on SQLite: one database file under a data directory,
// in WAL mode. Every port operation is one transaction. Writes commit with
// synchronous=NORMAL: a committed write is in the write-ahead log and
// survives a crash of the process. `synchronize` makes everything written
// before it survive a power loss too: it syncs the log file itself, through
// the handle SQLite gives out (SQLITE_FCNTL_JOURNAL_POINTER), with no
// transaction of its own, and returns at once when nothing was written
// through this store since its last sync.
//
// Schema (format 1, in PRAGMA user_version):
//   suites(id INTEGER PRIMARY KEY, name TEXT UNIQUE)
//   entries(suite_id, key, kind, value), PRIMARY KEY (suite_id, key),
//     WITHOUT ROWID: the table is its own index on (suite, key), so one
//     suite's keys are one range scan and nothing is loaded up front.
//     Lists and maps are kept in `value` as preference_value_codec.h encodes
//     them.
// The standard suite is the suite row named "" (a name no caller may use).
//
// A database that cannot be opened or is damaged never crashes the caller:
// suites fail to open or operations fail, and the cause is logged once per
// run of failures (again only after something succeeded in between).
//
// Used by the Linux platform and the simulated device alike, so it lives in
// its own small library (vantu_sqlite_store) that depends on the ports only.

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vantu/platform/preferences.h"

namespace vantu::store {

struct SqlitePreferencesOptions {
  /// Created (with its parents) when missing.
  std::filesystem::path directory;
  /// Receives the failure causes; standard error when empty.
  std::function<void(std::string_view)> log;
};

class SqlitePreferences : public Preferences {
 public:
  /// The database file's name inside the directory.
  static constexpr std::string_view kFileName = "preferences.sqlite3";
  /// Longest suite name accepted, in bytes (a suite is a file on the
  /// reference platform, named after it).
  static constexpr std::size_t kMaxSuiteNameBytes = 255;

  explicit SqlitePreferences(SqlitePreferencesOptions options);
  ~SqlitePreferences() override;

  std::filesystem::path databasePath() const;
  /// Whether the store accepts `name` for a suite.
  static bool acceptsSuiteName(std::string_view name);

  struct Database;

 protected:
  std::shared_ptr<PreferenceSuite> doSuite(std::string_view name) override;
  std::shared_ptr<PreferenceSuite> doStandard() override;
  bool doRemovePersistentDomain(std::string_view name) override;

 private:
  std::shared_ptr<Database> db_;
};

}  // namespace vantu::store
