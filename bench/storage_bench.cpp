// Figures of the sandboxed store on SQLite, printed, never asserted:
//   1. durable single-key saves per second through the store's suite
//      (write + synchronize) and through the data store (the bridges' path),
//      against a raw SQLite WAL transaction at the same synchronous level;
//   2. 10-key reads per second from a warm suite;
//   3. clearing 10,000 tracked domains;
//   4. opening a 1,000 domains x 1,000 keys database and reading from it,
//      with the resident memory it takes.
//
//   storage_bench [DIR]   (default: a temporary directory, removed after)

#include <algorithm>
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <set>
#include <string>

#include "platforms/sim/sim_device.h"
#include "platforms/store/sqlite_preferences.h"
#include "vantu/storage/secure_string_hasher.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace {

using namespace vantu;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

long residentKiB() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
  }
  return -1;
}

double rawSqliteSaves(const std::filesystem::path& dir, int count) {
  sqlite3* db = nullptr;
  sqlite3_open((dir / "raw.sqlite3").c_str(), &db);
  sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;"
               "CREATE TABLE IF NOT EXISTS kv(k TEXT PRIMARY KEY, v)", nullptr, nullptr, nullptr);
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(db, "INSERT INTO kv(k, v) VALUES (?1, ?2) ON CONFLICT(k) DO UPDATE SET v = excluded.v", -1,
                     &insert, nullptr);
  auto start = Clock::now();
  for (int i = 0; i < count; ++i) {
    sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    std::string key = "key" + std::to_string(i % 100);
    sqlite3_bind_text(insert, 1, key.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_int64(insert, 2, i);
    sqlite3_step(insert);
    sqlite3_reset(insert);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
  }
  double seconds = secondsSince(start);
  sqlite3_finalize(insert);
  sqlite3_close(db);
  return count / seconds;
}

double suiteSaves(const std::filesystem::path& dir, int count) {
  store::SqlitePreferences prefs({dir / "suite", {}});
  auto suite = prefs.suite(sandboxDomainName("bench.app"));
  auto start = Clock::now();
  for (int i = 0; i < count; ++i) {
    suite->set("key" + std::to_string(i % 100), PreferenceValue(std::int64_t{i}));
    suite->synchronize();
  }
  return count / secondsSince(start);
}

double dataStoreSaves(const std::filesystem::path& dir, int count) {
  sim::SimDevice device(dir / "store");
  device.install();
  auto store = UserDefaultsDataStoreImpl::shared();
  auto domain = sandboxDomainName("bench.app");
  auto start = Clock::now();
  for (int i = 0; i < count; ++i) {
    store->saveData(domain, Dict{{"key" + std::to_string(i % 100), i}}, [](bool, std::optional<PlatformError>) {});
    device.dispatch().runReady();
  }
  return count / secondsSince(start);
}

double warmGets(const std::filesystem::path& dir, int count) {
  store::SqlitePreferences prefs({dir / "gets", {}});
  auto suite = prefs.suite(sandboxDomainName("bench.app"));
  PreferenceValue::Map entries;
  std::vector<std::string> keys;
  for (int i = 0; i < 100; ++i) entries.emplace_back("key" + std::to_string(i), "value number " + std::to_string(i));
  for (int i = 0; i < 10; ++i) keys.push_back("key" + std::to_string(i * 7));
  suite->set(std::move(entries));
  suite->get(keys);  // warm
  auto start = Clock::now();
  std::size_t found = 0;
  for (int i = 0; i < count; ++i) found += suite->get(keys).value().size();
  double rate = count / secondsSince(start);
  if (found != static_cast<std::size_t>(count) * 10) std::printf("  (unexpected read count %zu)\n", found);
  return rate;
}

void clearing(const std::filesystem::path& dir, int domains) {
  sim::SimDevice device(dir / "clear");
  device.install();
  auto& prefs = *platform().preferences;
  auto tracker = prefs.suite(std::string(UserDefaultsAccessTracker::kSuiteName));
  PreferenceValue::Map tracked;
  for (int i = 0; i < domains; ++i) {
    auto name = sandboxDomainName("app" + std::to_string(i));
    prefs.suite(name)->set("k", PreferenceValue(std::int64_t{i}));
    tracked.emplace_back(name, PreferenceValue(true));
  }
  tracker->set(std::move(tracked));
  auto start = Clock::now();
  UserDefaultsDataStoreImpl::shared()->clearSandbox(Dict{{"app0", true}});
  device.dispatch().runReady();
  double seconds = secondsSince(start);
  auto left = tracker->keys().value().size();
  std::printf("clearing %d tracked domains (one exempted): %.3f s (%.0f domains/s), %zu still tracked\n", domains,
              seconds, domains / seconds, left);
}

void largeDatabase(const std::filesystem::path& dir, int domains, int keysPerDomain) {
  auto path = dir / "large";
  {
    store::SqlitePreferences prefs({path, {}});
    auto start = Clock::now();
    for (int d = 0; d < domains; ++d) {
      PreferenceValue::Map entries;
      entries.reserve(keysPerDomain);
      for (int k = 0; k < keysPerDomain; ++k) {
        entries.emplace_back("key" + std::to_string(k), "value " + std::to_string(d) + "/" + std::to_string(k));
      }
      prefs.suite(sandboxDomainName("app" + std::to_string(d)))->set(std::move(entries));
    }
    prefs.standard()->synchronize();
    std::printf("built %d domains x %d keys in %.1f s (%.1f MiB on disk)\n", domains, keysPerDomain,
                secondsSince(start),
                std::filesystem::file_size(path / std::string(store::SqlitePreferences::kFileName)) / 1048576.0);
  }
  long before = residentKiB();
  auto start = Clock::now();
  store::SqlitePreferences prefs({path, {}});
  auto suite = prefs.suite(sandboxDomainName("app" + std::to_string(domains / 2)));
  auto value = suite->get("key" + std::to_string(keysPerDomain / 3));
  double openSeconds = secondsSince(start);
  long afterOpen = residentKiB();
  start = Clock::now();
  int reads = 0;
  for (int d = 0; d < domains; d += 10) {
    reads += prefs.suite(sandboxDomainName("app" + std::to_string(d)))->get("key1").value().has_value();
  }
  double readSeconds = secondsSince(start);
  long afterReads = residentKiB();
  std::printf("open + first read: %.2f ms (value %s); resident memory +%ld KiB\n", openSeconds * 1000,
              value.ok() && value.value() ? value.value()->asString()->c_str() : "missing", afterOpen - before);
  std::printf("%d reads from other domains: %.2f ms; resident memory +%ld KiB more\n", reads, readSeconds * 1000,
              afterReads - afterOpen);
}

}  // namespace

// storage_bench [DIR [MEASURE...]]: MEASURE is saves, gets, clearing or
// open; all of them by default.
int main(int argc, char** argv) {
  std::filesystem::path dir;
  bool temporary = argc < 2;
  if (temporary) {
    std::string pattern = (std::filesystem::temp_directory_path() / "vantu-storage-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) return 1;
    dir = pattern;
  } else {
    dir = argv[1];
    std::filesystem::create_directories(dir);
  }
  std::set<std::string> chosen(argv + std::min(argc, 2), argv + argc);
  auto wanted = [&](const std::string& measure) { return chosen.empty() || chosen.count(measure) != 0; };
  std::printf("storage bench in %s\n", dir.c_str());
  constexpr int kSaves = 2000;
  if (wanted("saves")) {
    std::printf("durable single-key saves: raw SQLite WAL FULL %.0f/s, suite set+synchronize %.0f/s, "
                "data store saveData %.0f/s\n",
                rawSqliteSaves(dir, kSaves), suiteSaves(dir, kSaves), dataStoreSaves(dir, kSaves));
  }
  if (wanted("gets")) std::printf("10-key gets from a warm suite: %.0f/s\n", warmGets(dir, 20000));
  if (wanted("clearing")) clearing(dir, 10000);
  if (wanted("open")) largeDatabase(dir, 1000, 1000);
  if (temporary) std::filesystem::remove_all(dir);
  return 0;
}
