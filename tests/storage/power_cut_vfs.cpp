#include "tests/storage/power_cut_vfs.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace vantu::testing_support {

struct PowerCutVfs::File {
  sqlite3_file base;
  PowerCutVfs* vfs;
  std::string path;  // empty for files SQLite deletes on close (not tracked)
  sqlite3_file* real;  // lives right after this struct
};

namespace {

constexpr std::int64_t kSector = 512;

void writeAt(int fd, const std::vector<std::uint8_t>& bytes, std::size_t count, std::int64_t offset) {
  if (count > 0 && ::pwrite(fd, bytes.data(), count, offset) != static_cast<ssize_t>(count)) {
    throw std::runtime_error("power cut VFS: cannot restore a file");
  }
}

void resize(int fd, std::int64_t size) {
  if (::ftruncate(fd, size) != 0) throw std::runtime_error("power cut VFS: cannot restore a file's size");
}

}  // namespace

PowerCutVfs::PowerCutVfs(std::uint32_t seed) : random_(seed) {
  real_ = sqlite3_vfs_find(nullptr);
  vfs_.iVersion = 2;
  vfs_.szOsFile = static_cast<int>(sizeof(File)) + real_->szOsFile;
  vfs_.mxPathname = real_->mxPathname;
  vfs_.zName = "power-cut";
  vfs_.pAppData = this;
  vfs_.xOpen = &PowerCutVfs::open;
  vfs_.xDelete = &PowerCutVfs::remove;
  vfs_.xAccess = &PowerCutVfs::access;
  vfs_.xFullPathname = &PowerCutVfs::fullPathname;
  vfs_.xRandomness = &PowerCutVfs::randomness;
  vfs_.xSleep = &PowerCutVfs::sleep;
  vfs_.xCurrentTime = &PowerCutVfs::currentTime;
  vfs_.xGetLastError = &PowerCutVfs::lastError;
  vfs_.xCurrentTimeInt64 = &PowerCutVfs::currentTimeInt64;

  methods_.iVersion = 3;
  methods_.xClose = &PowerCutVfs::close;
  methods_.xRead = &PowerCutVfs::read;
  methods_.xWrite = &PowerCutVfs::write;
  methods_.xTruncate = &PowerCutVfs::truncate;
  methods_.xSync = &PowerCutVfs::sync;
  methods_.xFileSize = &PowerCutVfs::fileSize;
  methods_.xLock = &PowerCutVfs::lock;
  methods_.xUnlock = &PowerCutVfs::unlock;
  methods_.xCheckReservedLock = &PowerCutVfs::checkReservedLock;
  methods_.xFileControl = &PowerCutVfs::fileControl;
  methods_.xSectorSize = &PowerCutVfs::sectorSize;
  methods_.xDeviceCharacteristics = &PowerCutVfs::deviceCharacteristics;
  methods_.xShmMap = &PowerCutVfs::shmMap;
  methods_.xShmLock = &PowerCutVfs::shmLock;
  methods_.xShmBarrier = &PowerCutVfs::shmBarrier;
  methods_.xShmUnmap = &PowerCutVfs::shmUnmap;
  methods_.xFetch = &PowerCutVfs::fetch;
  methods_.xUnfetch = &PowerCutVfs::unfetch;
  sqlite3_vfs_register(&vfs_, 1);
}

PowerCutVfs::~PowerCutVfs() {
  sqlite3_vfs_unregister(&vfs_);
  sqlite3_vfs_register(real_, 1);
}

void PowerCutVfs::cutAfter(std::uint64_t n) {
  std::lock_guard lock(mutex_);
  countdown_ = n;
}

bool PowerCutVfs::powerIsOut() const {
  std::lock_guard lock(mutex_);
  return out_;
}

void PowerCutVfs::cutNow() {
  std::lock_guard lock(mutex_);
  out_ = true;
}

bool PowerCutVfs::powerHolds() {
  if (out_) return false;
  if (countdown_ > 0 && --countdown_ == 0) out_ = true;
  return !out_;
}

std::size_t PowerCutVfs::settle(Loss loss) {
  std::lock_guard lock(mutex_);
  std::size_t lost = 0;
  for (auto& [path, changes] : unsynced_) {
    if (changes.empty()) continue;
    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) throw std::runtime_error("power cut VFS: cannot reopen " + path);
    // Back to the last sync.
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
      writeAt(fd, change->before, change->before.size(), change->offset);
      resize(fd, change->sizeBefore);
    }
    // Then what the disk got of the rest.
    std::vector<bool> kept(changes.size(), false);
    if (loss == Loss::tornLast) kept.back() = true;
    if (loss == Loss::some) {
      for (std::size_t i = 0; i < kept.size(); ++i) kept[i] = random_() % 2 == 0;
    }
    const auto last = std::find(kept.rbegin(), kept.rend(), true);
    const std::size_t torn = last == kept.rend() ? kept.size() : kept.size() - 1 - std::size_t(last - kept.rbegin());
    for (std::size_t i = 0; i < changes.size(); ++i) {
      const Change& change = changes[i];
      if (!kept[i]) {
        ++lost;
        continue;
      }
      if (change.truncation) {
        resize(fd, change.offset);
        continue;
      }
      std::size_t count = change.after.size();
      if (i == torn && count > 0) {
        // Whole sectors up to the last one, then part of it.
        const std::int64_t end = change.offset + std::int64_t(count);
        const std::int64_t lastSector = std::max(change.offset, (end - 1) / kSector * kSector);
        count = std::size_t(lastSector - change.offset) + random_() % std::size_t(end - lastSector);
        if (count < change.after.size()) ++lost;
      }
      writeAt(fd, change.after, count, change.offset);
    }
    ::close(fd);
  }
  unsynced_.clear();
  out_ = false;
  countdown_ = 0;
  return lost;
}

int PowerCutVfs::open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  PowerCutVfs& self = of(vfs);
  auto* wrapper = reinterpret_cast<File*>(file);
  wrapper->base.pMethods = nullptr;
  wrapper->vfs = &self;
  new (&wrapper->path) std::string();
  wrapper->real = reinterpret_cast<sqlite3_file*>(reinterpret_cast<char*>(file) + sizeof(File));
  const int rc = self.real_->xOpen(self.real_, name, wrapper->real, flags, outFlags);
  if (rc != SQLITE_OK) {
    wrapper->path.~basic_string();
    return rc;
  }
  if (name && !(flags & SQLITE_OPEN_DELETEONCLOSE)) wrapper->path = name;
  wrapper->base.pMethods = &self.methods_;
  return SQLITE_OK;
}

int PowerCutVfs::remove(sqlite3_vfs* vfs, const char* name, int syncDir) {
  PowerCutVfs& self = of(vfs);
  {
    std::lock_guard lock(self.mutex_);
    if (!self.powerHolds()) return SQLITE_IOERR_DELETE;
    // A removal is taken as durable at once: nothing of the file comes back.
    self.unsynced_.erase(name);
  }
  return self.real_->xDelete(self.real_, name, syncDir);
}

int PowerCutVfs::access(sqlite3_vfs* vfs, const char* name, int flags, int* result) {
  return of(vfs).real_->xAccess(of(vfs).real_, name, flags, result);
}
int PowerCutVfs::fullPathname(sqlite3_vfs* vfs, const char* name, int size, char* out) {
  return of(vfs).real_->xFullPathname(of(vfs).real_, name, size, out);
}
int PowerCutVfs::randomness(sqlite3_vfs* vfs, int size, char* out) {
  return of(vfs).real_->xRandomness(of(vfs).real_, size, out);
}
int PowerCutVfs::sleep(sqlite3_vfs* vfs, int micros) { return of(vfs).real_->xSleep(of(vfs).real_, micros); }
int PowerCutVfs::currentTime(sqlite3_vfs* vfs, double* now) {
  return of(vfs).real_->xCurrentTime(of(vfs).real_, now);
}
int PowerCutVfs::currentTimeInt64(sqlite3_vfs* vfs, sqlite3_int64* now) {
  return of(vfs).real_->xCurrentTimeInt64(of(vfs).real_, now);
}
int PowerCutVfs::lastError(sqlite3_vfs* vfs, int size, char* out) {
  return of(vfs).real_->xGetLastError(of(vfs).real_, size, out);
}

namespace {
PowerCutVfs::File* fileOf(sqlite3_file* file) { return reinterpret_cast<PowerCutVfs::File*>(file); }
sqlite3_file* realOf(sqlite3_file* file) { return fileOf(file)->real; }
}  // namespace

int PowerCutVfs::close(sqlite3_file* file) {
  File* wrapper = fileOf(file);
  const int rc = wrapper->real->pMethods ? wrapper->real->pMethods->xClose(wrapper->real) : SQLITE_OK;
  wrapper->path.~basic_string();
  return rc;
}

int PowerCutVfs::read(sqlite3_file* file, void* out, int amount, sqlite3_int64 offset) {
  return realOf(file)->pMethods->xRead(realOf(file), out, amount, offset);
}

int PowerCutVfs::write(sqlite3_file* file, const void* data, int amount, sqlite3_int64 offset) {
  File* wrapper = fileOf(file);
  PowerCutVfs& self = *wrapper->vfs;
  sqlite3_file* real = wrapper->real;
  std::lock_guard lock(self.mutex_);
  if (!self.powerHolds()) return SQLITE_IOERR_WRITE;
  if (!wrapper->path.empty()) {
    Change change;
    change.offset = offset;
    sqlite3_int64 size = 0;
    if (real->pMethods->xFileSize(real, &size) != SQLITE_OK) return SQLITE_IOERR_WRITE;
    change.sizeBefore = size;
    const std::int64_t present = std::clamp<std::int64_t>(size - offset, 0, amount);
    change.before.resize(std::size_t(present));
    if (present > 0 && real->pMethods->xRead(real, change.before.data(), int(present), offset) != SQLITE_OK) {
      return SQLITE_IOERR_WRITE;
    }
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    change.after.assign(bytes, bytes + amount);
    self.unsynced_[wrapper->path].push_back(std::move(change));
  }
  return real->pMethods->xWrite(real, data, amount, offset);
}

int PowerCutVfs::truncate(sqlite3_file* file, sqlite3_int64 size) {
  File* wrapper = fileOf(file);
  PowerCutVfs& self = *wrapper->vfs;
  sqlite3_file* real = wrapper->real;
  std::lock_guard lock(self.mutex_);
  if (!self.powerHolds()) return SQLITE_IOERR_TRUNCATE;
  if (!wrapper->path.empty()) {
    Change change;
    change.truncation = true;
    change.offset = size;
    sqlite3_int64 before = 0;
    if (real->pMethods->xFileSize(real, &before) != SQLITE_OK) return SQLITE_IOERR_TRUNCATE;
    change.sizeBefore = before;
    if (before > size) {
      change.before.resize(std::size_t(before - size));
      if (real->pMethods->xRead(real, change.before.data(), int(before - size), size) != SQLITE_OK) {
        return SQLITE_IOERR_TRUNCATE;
      }
    }
    self.unsynced_[wrapper->path].push_back(std::move(change));
  }
  return real->pMethods->xTruncate(real, size);
}

int PowerCutVfs::sync(sqlite3_file* file, int) {
  File* wrapper = fileOf(file);
  PowerCutVfs& self = *wrapper->vfs;
  std::lock_guard lock(self.mutex_);
  if (!self.powerHolds()) return SQLITE_IOERR_FSYNC;
  // The model is the disk: what was written is durable now. (The real sync
  // is left out; the files are scratch files of the test.)
  self.unsynced_.erase(wrapper->path);
  return SQLITE_OK;
}

int PowerCutVfs::fileSize(sqlite3_file* file, sqlite3_int64* size) {
  return realOf(file)->pMethods->xFileSize(realOf(file), size);
}
int PowerCutVfs::lock(sqlite3_file* file, int level) { return realOf(file)->pMethods->xLock(realOf(file), level); }
int PowerCutVfs::unlock(sqlite3_file* file, int level) { return realOf(file)->pMethods->xUnlock(realOf(file), level); }
int PowerCutVfs::checkReservedLock(sqlite3_file* file, int* result) {
  return realOf(file)->pMethods->xCheckReservedLock(realOf(file), result);
}
int PowerCutVfs::fileControl(sqlite3_file* file, int op, void* arg) {
  return realOf(file)->pMethods->xFileControl(realOf(file), op, arg);
}
int PowerCutVfs::sectorSize(sqlite3_file* file) { return realOf(file)->pMethods->xSectorSize(realOf(file)); }
int PowerCutVfs::deviceCharacteristics(sqlite3_file* file) {
  // Only "a write never harms the bytes around it", which the model keeps:
  // a torn write loses part of itself, nothing else.
  return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file)) & SQLITE_IOCAP_POWERSAFE_OVERWRITE;
}
int PowerCutVfs::shmMap(sqlite3_file* file, int region, int size, int extend, void volatile** out) {
  return realOf(file)->pMethods->xShmMap(realOf(file), region, size, extend, out);
}
int PowerCutVfs::shmLock(sqlite3_file* file, int offset, int n, int flags) {
  return realOf(file)->pMethods->xShmLock(realOf(file), offset, n, flags);
}
void PowerCutVfs::shmBarrier(sqlite3_file* file) { realOf(file)->pMethods->xShmBarrier(realOf(file)); }
int PowerCutVfs::shmUnmap(sqlite3_file* file, int deleteFlag) {
  return realOf(file)->pMethods->xShmUnmap(realOf(file), deleteFlag);
}
int PowerCutVfs::fetch(sqlite3_file* file, sqlite3_int64 offset, int amount, void** out) {
  return realOf(file)->pMethods->xFetch(realOf(file), offset, amount, out);
}
int PowerCutVfs::unfetch(sqlite3_file* file, sqlite3_int64 offset, void* page) {
  return realOf(file)->pMethods->xUnfetch(realOf(file), offset, page);
}

}  // namespace vantu::testing_support
