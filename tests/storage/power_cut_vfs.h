#pragma once
// A SQLite VFS for tests that simulates power cuts. It wraps the default VFS
// and, while it is installed (as the default, so a store opens through it
// unchanged), keeps in memory every write and truncation not yet synced:
// the bytes it replaced and the bytes it wrote. A sync makes a file's
// changes durable (the real sync is skipped: this VFS is the disk's model).
//
// After `cutAfter(n)`, the n-th change or sync from then on does not happen:
// the power is gone, and every later change, sync and removal fails without
// touching the disk. Once every connection is closed, `settle()` puts back
// what the disk held at each file's last sync and then lays down the part
// of the unsynced changes `Loss` keeps, the way a disk may have got them
// before the power went.

#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <vector>

namespace vantu::testing_support {

class PowerCutVfs {
 public:
  /// What survives of the changes not yet synced.
  enum class Loss {
    /// None of them.
    all,
    /// Only the last one, cut inside its last 512-byte sector (a torn write).
    tornLast,
    /// Any of them, each with even odds, the last one kept possibly torn
    /// (the disk wrote some, in any order).
    some,
  };

  /// Registers the VFS as the default until destroyed.
  explicit PowerCutVfs(std::uint32_t seed);
  ~PowerCutVfs();
  PowerCutVfs(const PowerCutVfs&) = delete;
  PowerCutVfs& operator=(const PowerCutVfs&) = delete;

  /// The power goes at the n-th change or sync from now (n >= 1).
  void cutAfter(std::uint64_t n);
  bool powerIsOut() const;
  /// Cuts the power now if it is still on.
  void cutNow();
  /// With every connection closed: the files as the disk holds them after
  /// the cut, losing the unsynced changes as `loss` says; the power is on
  /// again. Returns how many unsynced changes were thrown away.
  std::size_t settle(Loss loss);

  /// An open file: SQLite's header, then the wrapped VFS's own file.
  struct File;

 private:
  struct Change {
    bool truncation = false;
    std::int64_t offset = 0;  // a truncation's new size
    std::vector<std::uint8_t> before;  // the bytes replaced (a truncation: the tail removed)
    std::vector<std::uint8_t> after;   // the bytes written
    std::int64_t sizeBefore = 0;
  };

  static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags);
  static int remove(sqlite3_vfs*, const char* name, int syncDir);
  static int access(sqlite3_vfs*, const char* name, int flags, int* result);
  static int fullPathname(sqlite3_vfs*, const char* name, int size, char* out);
  static int randomness(sqlite3_vfs*, int size, char* out);
  static int sleep(sqlite3_vfs*, int micros);
  static int currentTime(sqlite3_vfs*, double* now);
  static int currentTimeInt64(sqlite3_vfs*, sqlite3_int64* now);
  static int lastError(sqlite3_vfs*, int size, char* out);

  static int close(sqlite3_file*);
  static int read(sqlite3_file*, void* out, int amount, sqlite3_int64 offset);
  static int write(sqlite3_file*, const void* data, int amount, sqlite3_int64 offset);
  static int truncate(sqlite3_file*, sqlite3_int64 size);
  static int sync(sqlite3_file*, int flags);
  static int fileSize(sqlite3_file*, sqlite3_int64* size);
  static int lock(sqlite3_file*, int level);
  static int unlock(sqlite3_file*, int level);
  static int checkReservedLock(sqlite3_file*, int* result);
  static int fileControl(sqlite3_file*, int op, void* arg);
  static int sectorSize(sqlite3_file*);
  static int deviceCharacteristics(sqlite3_file*);
  static int shmMap(sqlite3_file*, int region, int size, int extend, void volatile** out);
  static int shmLock(sqlite3_file*, int offset, int n, int flags);
  static void shmBarrier(sqlite3_file*);
  static int shmUnmap(sqlite3_file*, int deleteFlag);
  static int fetch(sqlite3_file*, sqlite3_int64 offset, int amount, void** out);
  static int unfetch(sqlite3_file*, sqlite3_int64 offset, void* page);

  static PowerCutVfs& of(sqlite3_vfs* vfs) { return *static_cast<PowerCutVfs*>(vfs->pAppData); }
  /// Counts a change or sync; false when the power is (now) out.
  bool powerHolds();

  sqlite3_vfs vfs_{};
  sqlite3_vfs* real_ = nullptr;
  sqlite3_io_methods methods_{};
  std::mt19937 random_;
  mutable std::mutex mutex_;
  std::uint64_t countdown_ = 0;  // 0: no cut planned
  bool out_ = false;
  /// The unsynced changes of each file, by path, in order.
  std::map<std::string, std::vector<Change>> unsynced_;
};

}  // namespace vantu::testing_support
