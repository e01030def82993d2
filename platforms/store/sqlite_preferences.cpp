#include "platforms/store/sqlite_preferences.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <mutex>

#include "platforms/store/preference_value_codec.h"

namespace vantu::store {
namespace {

// Kinds in the `kind` column. Part of the file format: never renumber.
enum StoredKind : int {
  kNull = 0,
  kBool = 1,
  kInt = 2,
  kDouble = 3,
  kString = 4,
  kBytes = 5,
  kDate = 6,
  kList = 7,
  kMap = 8,
};

constexpr int kFormatVersion = 1;

// The standard suite's row name; every public suite name is non-empty.
constexpr std::string_view kStandardSuite = "";

// ---- SQLite plumbing --------------------------------------------------------

struct Failure {
  std::string message;
  bool damaged = false;  // the file is not (or no longer) a usable database
};

bool isDamage(int rc) {
  int primary = rc & 0xff;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

enum Sql : std::size_t {
  kBegin,
  kBeginImmediate,
  kCommit,
  kRollback,
  kSuiteId,
  kInsertSuite,
  kUpsert,
  kDelete,
  kAll,
  kKeys,
  kDeleteSuiteEntries,
  kDeleteSuite,
  kSqlCount,
};

constexpr std::array<const char*, kSqlCount> kSqlText = {
    "BEGIN",
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
    "SELECT id FROM suites WHERE name = ?1",
    "INSERT INTO suites(name) VALUES (?1) ON CONFLICT(name) DO NOTHING",
    "INSERT INTO entries(suite_id, key, kind, value) VALUES (?1, ?2, ?3, ?4) "
    "ON CONFLICT(suite_id, key) DO UPDATE SET kind = excluded.kind, value = excluded.value",
    "DELETE FROM entries WHERE suite_id = ?1 AND key = ?2",
    "SELECT key, kind, value FROM entries WHERE suite_id = ?1 ORDER BY key",
    "SELECT key FROM entries WHERE suite_id = ?1 ORDER BY key",
    "DELETE FROM entries WHERE suite_id = ?1",
    "DELETE FROM suites WHERE id = ?1",
};

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS suites ("
    "  id INTEGER PRIMARY KEY,"
    "  name TEXT NOT NULL UNIQUE);"
    "CREATE TABLE IF NOT EXISTS entries ("
    "  suite_id INTEGER NOT NULL,"
    "  key TEXT NOT NULL,"
    "  kind INTEGER NOT NULL,"
    "  value,"
    "  PRIMARY KEY (suite_id, key)) WITHOUT ROWID;";

const char kEmpty[1] = {0};

// Keys read by one statement; longer gets take several.
constexpr std::size_t kMaxKeysPerRead = 16;

}  // namespace

struct SqlitePreferences::Database {
  std::mutex mutex;
  std::filesystem::path directory;
  std::filesystem::path path;
  std::function<void(std::string_view)> log;
  sqlite3* db = nullptr;
  std::array<sqlite3_stmt*, kSqlCount> statements{};
  /// readStatements[n - 1] reads n keys of a suite in one step loop.
  std::array<sqlite3_stmt*, kMaxKeysPerRead> readStatements{};
  bool failing = false;
  bool unsynced = false;

  ~Database() { close(); }

  void close() {
    for (auto*& statement : statements) {
      sqlite3_finalize(statement);
      statement = nullptr;
    }
    for (auto*& statement : readStatements) {
      sqlite3_finalize(statement);
      statement = nullptr;
    }
    if (db) sqlite3_close_v2(db);
    db = nullptr;
  }

  void report(const Failure& failure) {
    if (failure.damaged) close();  // the next open re-examines the file
    if (failing) return;
    failing = true;
    std::string line = "vantu-h5 preferences: " + path.string() + ": " + failure.message;
    if (log) {
      log(line);
    } else {
      std::fprintf(stderr, "%s\n", line.c_str());
      std::fflush(stderr);
    }
  }

  [[noreturn]] void raise(int rc, std::string_view what) {
    std::string message(what);
    message += ": ";
    message += db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
    throw Failure{std::move(message), isDamage(rc)};
  }

  void check(int rc, std::string_view what) {
    if (rc != SQLITE_OK && rc != SQLITE_DONE && rc != SQLITE_ROW) raise(rc, what);
  }

  sqlite3_stmt* statement(Sql which) {
    auto*& slot = statements[which];
    if (!slot) {
      check(sqlite3_prepare_v3(db, kSqlText[which], -1, SQLITE_PREPARE_PERSISTENT, &slot, nullptr), "prepare");
    } else {
      sqlite3_reset(slot);
      sqlite3_clear_bindings(slot);
    }
    return slot;
  }

  /// For keys ?2 .. ?(count + 1) of suite ?1: (position, kind, value) of
  /// each key present. One statement per get, so a get pays for statement
  /// set-up and reset once; the arms are index seeks (an IN list would
  /// build a temporary index at each run).
  sqlite3_stmt* readStatement(std::size_t count) {
    auto*& slot = readStatements[count - 1];
    if (!slot) {
      std::string sql;
      for (std::size_t i = 0; i < count; ++i) {
        if (i) sql += " UNION ALL ";
        sql += "SELECT " + std::to_string(i) +
               ", kind, value FROM entries WHERE suite_id = ?1 AND key = ?" +
               std::to_string(i + 2);
      }
      check(sqlite3_prepare_v3(db, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &slot, nullptr), "prepare");
    }
    return slot;
  }

  /// Steps a statement that returns no row.
  void run(Sql which, std::string_view what) {
    auto* stmt = statement(which);
    check(sqlite3_step(stmt), what);
    sqlite3_reset(stmt);
  }

  void exec(const char* sql, std::string_view what) {
    char* error = nullptr;
    int rc = sqlite3_exec(db, sql, nullptr, nullptr, &error);
    if (rc != SQLITE_OK) {
      std::string message = std::string(what) + ": " + (error ? error : sqlite3_errstr(rc));
      sqlite3_free(error);
      throw Failure{std::move(message), isDamage(rc)};
    }
  }

  void open() {
    if (db) return;
    std::error_code ec;
    std::filesystem::create_directories(directory, ec);
    if (ec) throw Failure{"cannot create the data directory: " + ec.message(), false};
    int rc = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                             nullptr);
    if (rc != SQLITE_OK) {
      std::string message = std::string("cannot open the database: ") + (db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
      close();
      throw Failure{std::move(message), false};
    }
    try {
      sqlite3_extended_result_codes(db, 1);
      sqlite3_busy_timeout(db, 5000);
      {
        sqlite3_stmt* stmt = nullptr;
        check(sqlite3_prepare_v2(db, "PRAGMA journal_mode=WAL", -1, &stmt, nullptr), "journal mode");
        rc = sqlite3_step(stmt);
        std::string mode = rc == SQLITE_ROW ? reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)) : "";
        sqlite3_finalize(stmt);
        check(rc, "journal mode");
        if (mode != "wal") throw Failure{"the database cannot use a write-ahead log (mode " + mode + ")", false};
      }
      exec("PRAGMA synchronous=NORMAL", "synchronous mode");
      exec("BEGIN IMMEDIATE", "schema");
      try {
        sqlite3_stmt* stmt = nullptr;
        check(sqlite3_prepare_v2(db, "PRAGMA user_version", -1, &stmt, nullptr), "format version");
        rc = sqlite3_step(stmt);
        int version = rc == SQLITE_ROW ? sqlite3_column_int(stmt, 0) : 0;
        sqlite3_finalize(stmt);
        check(rc, "format version");
        if (version > kFormatVersion) {
          throw Failure{"the database was written in a newer format (" + std::to_string(version) + ")", false};
        }
        exec(kSchema, "schema");
        if (version < kFormatVersion) {
          exec(("PRAGMA user_version=" + std::to_string(kFormatVersion)).c_str(), "format version");
        }
        exec("COMMIT", "schema");
      } catch (...) {
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
      }
    } catch (Failure& failure) {
      close();
      failure.damaged = false;  // already closed
      throw;
    }
  }

  /// Runs `body` in one transaction under the lock. Failures are logged
  /// (once per run of failures) and handed back.
  template <class T, class Body>
  PreferenceResult<T> transaction(bool write, Body&& body) {
    std::lock_guard lock(mutex);
    bool begun = false;
    try {
      open();
      run(write ? kBeginImmediate : kBegin, "begin");
      begun = true;
      T result = body();
      run(kCommit, "commit");
      begun = false;
      if (write) unsynced = true;
      failing = false;
      return result;
    } catch (const Failure& failure) {
      abandon(begun);
      report(failure);
      return PreferenceError{failure.message};
    }
  }

  /// After a failure: stops every statement and rolls back what was begun.
  void abandon(bool begun) {
    for (auto* stmt : statements) {
      if (stmt) sqlite3_reset(stmt);
    }
    for (auto* stmt : readStatements) {
      if (stmt) sqlite3_reset(stmt);
    }
    if (begun && db && !sqlite3_get_autocommit(db)) sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
  }

  bool usable() {
    std::lock_guard lock(mutex);
    try {
      open();
      return true;
    } catch (const Failure& failure) {
      report(failure);
      return false;
    }
  }

  std::optional<std::int64_t> suiteId(std::string_view name) {
    auto* stmt = statement(kSuiteId);
    sqlite3_bind_text(stmt, 1, name.empty() ? kEmpty : name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    int rc = sqlite3_step(stmt);
    std::optional<std::int64_t> id;
    if (rc == SQLITE_ROW) id = sqlite3_column_int64(stmt, 0);
    check(rc, "find suite");
    sqlite3_reset(stmt);
    return id;
  }

  std::int64_t ensureSuite(std::string_view name) {
    if (auto id = suiteId(name)) return *id;
    auto* stmt = statement(kInsertSuite);
    sqlite3_bind_text(stmt, 1, name.empty() ? kEmpty : name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    check(sqlite3_step(stmt), "create suite");
    sqlite3_reset(stmt);
    return sqlite3_last_insert_rowid(db);
  }

  static void bindKey(sqlite3_stmt* stmt, int index, const std::string& key) {
    sqlite3_bind_text(stmt, index, key.empty() ? kEmpty : key.data(), static_cast<int>(key.size()), SQLITE_STATIC);
  }

  /// Binds kind and value of `value` at ?3 and ?4. `scratch` holds encoded
  /// nested values until the statement has run.
  static void bindValue(sqlite3_stmt* stmt, const PreferenceValue& value, std::string& scratch) {
    auto blob = [&](const void* data, std::size_t size) {
      sqlite3_bind_blob64(stmt, 4, size ? data : kEmpty, size, SQLITE_STATIC);
    };
    switch (value.kind()) {
      case PreferenceValue::Kind::Null: sqlite3_bind_int(stmt, 3, kNull); sqlite3_bind_null(stmt, 4); break;
      case PreferenceValue::Kind::Bool:
        sqlite3_bind_int(stmt, 3, kBool);
        sqlite3_bind_int(stmt, 4, *value.asBool() ? 1 : 0);
        break;
      case PreferenceValue::Kind::Int:
        sqlite3_bind_int(stmt, 3, kInt);
        sqlite3_bind_int64(stmt, 4, *value.asInt());
        break;
      case PreferenceValue::Kind::Double:
        // SQLite keeps no NaN: it is stored as NULL and read back as NaN.
        sqlite3_bind_int(stmt, 3, kDouble);
        sqlite3_bind_double(stmt, 4, *value.asDouble());
        break;
      case PreferenceValue::Kind::Date:
        sqlite3_bind_int(stmt, 3, kDate);
        sqlite3_bind_double(stmt, 4, value.asDate()->secondsSince1970);
        break;
      case PreferenceValue::Kind::String: {
        sqlite3_bind_int(stmt, 3, kString);
        const auto& text = *value.asString();
        sqlite3_bind_text64(stmt, 4, text.empty() ? kEmpty : text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
        break;
      }
      case PreferenceValue::Kind::Bytes:
        sqlite3_bind_int(stmt, 3, kBytes);
        blob(value.asBytes()->data.data(), value.asBytes()->data.size());
        break;
      case PreferenceValue::Kind::List:
      case PreferenceValue::Kind::Map:
        sqlite3_bind_int(stmt, 3, value.kind() == PreferenceValue::Kind::List ? kList : kMap);
        scratch = encodePreferenceValue(value);
        blob(scratch.data(), scratch.size());
        break;
    }
  }

  /// Reads a (kind, value) pair from columns `kindColumn` and `kindColumn + 1`.
  static PreferenceValue columnValue(sqlite3_stmt* stmt, int kindColumn) {
    int kind = sqlite3_column_int(stmt, kindColumn);
    int column = kindColumn + 1;
    int type = sqlite3_column_type(stmt, column);
    auto damaged = [] { return Failure{"a stored value is damaged", false}; };
    auto blobView = [&] {
      const void* data = sqlite3_column_blob(stmt, column);
      int size = sqlite3_column_bytes(stmt, column);
      return std::string_view(static_cast<const char*>(data ? data : kEmpty), static_cast<std::size_t>(size));
    };
    switch (kind) {
      case kNull: return PreferenceValue();
      case kBool:
        if (type != SQLITE_INTEGER) throw damaged();
        return PreferenceValue(sqlite3_column_int64(stmt, column) != 0);
      case kInt:
        if (type != SQLITE_INTEGER) throw damaged();
        return PreferenceValue(static_cast<std::int64_t>(sqlite3_column_int64(stmt, column)));
      case kDouble:
      case kDate: {
        double d;
        if (type == SQLITE_NULL) {
          d = std::numeric_limits<double>::quiet_NaN();
        } else if (type == SQLITE_FLOAT) {
          d = sqlite3_column_double(stmt, column);
        } else {
          throw damaged();
        }
        return kind == kDouble ? PreferenceValue(d) : PreferenceValue(PreferenceDate{d});
      }
      case kString: {
        if (type != SQLITE_TEXT) throw damaged();
        const auto* text = sqlite3_column_text(stmt, column);
        int size = sqlite3_column_bytes(stmt, column);
        return PreferenceValue(std::string(text ? reinterpret_cast<const char*>(text) : "", static_cast<std::size_t>(size)));
      }
      case kBytes: {
        if (type != SQLITE_BLOB) throw damaged();
        auto view = blobView();
        return PreferenceValue(Bytes{std::vector<std::uint8_t>(view.begin(), view.end())});
      }
      case kList:
      case kMap: {
        if (type != SQLITE_BLOB) throw damaged();
        auto decoded = decodePreferenceValue(blobView());
        auto want = kind == kList ? PreferenceValue::Kind::List : PreferenceValue::Kind::Map;
        if (!decoded || decoded->kind() != want) throw damaged();
        return std::move(*decoded);
      }
      default: throw damaged();
    }
  }

  static std::string_view columnView(sqlite3_stmt* stmt, int column) {
    const auto* text = sqlite3_column_text(stmt, column);
    int size = sqlite3_column_bytes(stmt, column);
    return {text ? reinterpret_cast<const char*>(text) : "", static_cast<std::size_t>(size)};
  }

  static std::string columnText(sqlite3_stmt* stmt, int column) { return std::string(columnView(stmt, column)); }

  /// Syncs the write-ahead log: the commits before it were written to the
  /// log (synchronous=NORMAL) but not synced. The log's own file handle is
  /// synced rather than committing a marker under synchronous=FULL, which
  /// costs a second transaction per save for the same one sync.
  PreferenceStatus synchronize() {
    std::lock_guard lock(mutex);
    if (!unsynced && db) return std::monostate{};
    try {
      open();
      sqlite3_file* log = nullptr;
      check(sqlite3_file_control(db, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log), "synchronize");
      // No open log means nothing was written through this connection.
      if (log && log->pMethods) check(log->pMethods->xSync(log, SQLITE_SYNC_NORMAL), "synchronize");
      unsynced = false;
      failing = false;
      return std::monostate{};
    } catch (const Failure& failure) {
      report(failure);
      return PreferenceError{failure.message};
    }
  }
};

namespace {

using Database = SqlitePreferences::Database;

class SqliteSuite : public PreferenceSuite {
 public:
  SqliteSuite(std::string name, std::shared_ptr<Database> db) : PreferenceSuite(std::move(name)), db_(std::move(db)) {}

 protected:
  PreferenceResult<std::vector<std::optional<PreferenceValue>>> doGet(const std::vector<std::string>& keys) override {
    using Values = std::vector<std::optional<PreferenceValue>>;
    return db_->transaction<Values>(false, [&] {
      Values values(keys.size());
      auto id = keys.empty() ? std::nullopt : db_->suiteId(name());
      if (!id) return values;
      for (std::size_t first = 0; first < keys.size(); first += kMaxKeysPerRead) {
        std::size_t count = std::min(kMaxKeysPerRead, keys.size() - first);
        auto* stmt = db_->readStatement(count);
        sqlite3_bind_int64(stmt, 1, *id);
        for (std::size_t i = 0; i < count; ++i) Database::bindKey(stmt, static_cast<int>(i + 2), keys[first + i]);
        int rc;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
          auto position = static_cast<std::size_t>(sqlite3_column_int64(stmt, 0));
          values[first + position] = Database::columnValue(stmt, 1);
        }
        db_->check(rc, "read");
        sqlite3_reset(stmt);
      }
      return values;
    });
  }

  PreferenceStatus doSet(PreferenceValue::Map entries) override {
    return db_->transaction<std::monostate>(true, [&] {
      auto id = db_->ensureSuite(name());
      std::string scratch;
      for (const auto& [key, value] : entries) {
        auto* stmt = db_->statement(kUpsert);
        sqlite3_bind_int64(stmt, 1, id);
        Database::bindKey(stmt, 2, key);
        Database::bindValue(stmt, value, scratch);
        db_->check(sqlite3_step(stmt), "write");
        sqlite3_reset(stmt);
      }
      return std::monostate{};
    });
  }

  PreferenceStatus doRemove(const std::vector<std::string>& keys) override {
    return db_->transaction<std::monostate>(true, [&] {
      auto id = db_->suiteId(name());
      if (!id) return std::monostate{};
      for (const auto& key : keys) {
        auto* stmt = db_->statement(kDelete);
        sqlite3_bind_int64(stmt, 1, *id);
        Database::bindKey(stmt, 2, key);
        db_->check(sqlite3_step(stmt), "remove");
        sqlite3_reset(stmt);
      }
      return std::monostate{};
    });
  }

  PreferenceResult<PreferenceValue::Map> doDictionaryRepresentation() override {
    return db_->transaction<PreferenceValue::Map>(false, [&] {
      PreferenceValue::Map all;
      auto id = db_->suiteId(name());
      if (!id) return all;
      auto* stmt = db_->statement(kAll);
      sqlite3_bind_int64(stmt, 1, *id);
      int rc;
      while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        all.emplace_back(Database::columnText(stmt, 0), Database::columnValue(stmt, 1));
      }
      db_->check(rc, "read");
      sqlite3_reset(stmt);
      return all;
    });
  }

  PreferenceResult<std::vector<std::string>> doKeys() override {
    return db_->transaction<std::vector<std::string>>(false, [&] {
      std::vector<std::string> keys;
      auto id = db_->suiteId(name());
      if (!id) return keys;
      auto* stmt = db_->statement(kKeys);
      sqlite3_bind_int64(stmt, 1, *id);
      int rc;
      while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) keys.push_back(Database::columnText(stmt, 0));
      db_->check(rc, "read keys");
      sqlite3_reset(stmt);
      return keys;
    });
  }

  PreferenceStatus doSynchronize() override { return db_->synchronize(); }

 private:
  std::shared_ptr<Database> db_;
};

}  // namespace

SqlitePreferences::SqlitePreferences(SqlitePreferencesOptions options) : db_(std::make_shared<Database>()) {
  db_->directory = std::move(options.directory);
  db_->path = db_->directory / std::string(kFileName);
  db_->log = std::move(options.log);
}

SqlitePreferences::~SqlitePreferences() = default;

std::filesystem::path SqlitePreferences::databasePath() const { return db_->path; }

bool SqlitePreferences::acceptsSuiteName(std::string_view name) {
  return !name.empty() && name.size() <= kMaxSuiteNameBytes && name.find('\0') == std::string_view::npos;
}

std::shared_ptr<PreferenceSuite> SqlitePreferences::doSuite(std::string_view name) {
  if (!acceptsSuiteName(name)) return nullptr;
  if (!db_->usable()) return nullptr;
  return std::make_shared<SqliteSuite>(std::string(name), db_);
}

std::shared_ptr<PreferenceSuite> SqlitePreferences::doStandard() {
  if (!db_->usable()) return nullptr;
  return std::make_shared<SqliteSuite>(std::string(kStandardSuite), db_);
}

bool SqlitePreferences::doRemovePersistentDomain(std::string_view name) {
  if (!acceptsSuiteName(name)) return false;
  auto result = db_->transaction<std::monostate>(true, [&] {
    auto id = db_->suiteId(name);
    if (!id) return std::monostate{};
    auto* entries = db_->statement(kDeleteSuiteEntries);
    sqlite3_bind_int64(entries, 1, *id);
    db_->check(sqlite3_step(entries), "remove suite");
    sqlite3_reset(entries);
    auto* suite = db_->statement(kDeleteSuite);
    sqlite3_bind_int64(suite, 1, *id);
    db_->check(sqlite3_step(suite), "remove suite");
    sqlite3_reset(suite);
    return std::monostate{};
  });
  return result.ok();
}

}  // namespace vantu::store
