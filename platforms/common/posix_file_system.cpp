#include "platforms/common/posix_file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace vantu {
namespace {

FileSystemError errorOf(int error) {
  return FileSystemError{error == EEXIST ? FileSystemError::Kind::alreadyExists : FileSystemError::Kind::other, error,
                         std::strerror(error)};
}

/// A descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) reset(std::exchange(other.fd_, -1));
    return *this;
  }
  ~Descriptor() { reset(-1); }
  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  void reset(int fd) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = fd;
  }
  int fd_;
};

/// The folder holding the last component of `relative`, every folder on the
/// way opened without following a link; none, with errno set, when one is
/// missing, is not a folder, or is a link (ENOENT: a link is a dead end).
Descriptor openParent(const std::filesystem::path& folder, const std::filesystem::path& relative) {
  Descriptor current(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  const std::filesystem::path parent = relative.parent_path();
  for (const auto& part : parent) {
    if (!current) break;
    Descriptor next(::openat(current.get(), part.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!next) {
      const int error = errno;
      struct stat status {};
      const bool link = ::fstatat(current.get(), part.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
      errno = link ? ENOENT : error;
    }
    current = std::move(next);
  }
  return current;
}

/// The kind of file `mode` describes.
FileEntryKind kindOf(mode_t mode) {
  if (S_ISREG(mode)) return FileEntryKind::regularFile;
  if (S_ISDIR(mode)) return FileEntryKind::directory;
  if (S_ISLNK(mode)) return FileEntryKind::symbolicLink;
  return FileEntryKind::other;
}

}  // namespace

std::optional<FileSystemError> PosixFileSystem::doMoveWithoutReplacing(const std::filesystem::path& from,
                                                                       const std::filesystem::path& to) {
  int result = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
  if (result != 0 && errno == EINVAL) {
    result = ::link(from.c_str(), to.c_str());
    if (result == 0) ::unlink(from.c_str());
  }
  if (result == 0) return std::nullopt;
  return errorOf(errno);
}

FileEntryKind PosixFileSystem::doEntryKind(const std::filesystem::path& folder, const std::filesystem::path& relative) {
  Descriptor parent = openParent(folder, relative);
  struct stat status {};
  if (!parent || ::fstatat(parent.get(), relative.filename().c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return FileEntryKind::missing;
  }
  return kindOf(status.st_mode);
}

Result<Bytes, FileSystemError> PosixFileSystem::doReadRegularFile(const std::filesystem::path& folder,
                                                                  const std::filesystem::path& relative,
                                                                  std::uint64_t maxBytes) {
  Descriptor parent = openParent(folder, relative);
  if (!parent) return errorOf(errno);
  // O_NONBLOCK: opening a pipe someone put there must not wait for a writer.
  Descriptor file(::openat(parent.get(), relative.filename().c_str(),
                           O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file) return errorOf(errno == ELOOP ? ENOENT : errno);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return errorOf(errno);
  if (S_ISDIR(status.st_mode)) return errorOf(EISDIR);
  if (!S_ISREG(status.st_mode)) return errorOf(EINVAL);
  if (static_cast<std::uint64_t>(status.st_size) > maxBytes) return errorOf(EFBIG);
  Bytes bytes{std::vector<std::uint8_t>(static_cast<std::size_t>(status.st_size))};
  std::size_t done = 0;
  while (done < bytes.data.size()) {
    const ssize_t n = ::read(file.get(), bytes.data.data() + done, bytes.data.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errorOf(errno);
    if (n == 0) break;  // the file shrank while it was read
    done += static_cast<std::size_t>(n);
  }
  bytes.data.resize(done);
  return bytes;
}

std::optional<FileSystemError> PosixFileSystem::doRemoveRegularFile(const std::filesystem::path& folder,
                                                                    const std::filesystem::path& relative) {
  Descriptor parent = openParent(folder, relative);
  if (!parent) return errorOf(errno);
  const std::filesystem::path name = relative.filename();
  struct stat status {};
  if (::fstatat(parent.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return errorOf(errno);
  if (S_ISLNK(status.st_mode)) return errorOf(ENOENT);
  if (S_ISDIR(status.st_mode)) return errorOf(EISDIR);
  if (!S_ISREG(status.st_mode)) return errorOf(EINVAL);
  // unlinkat never follows a link, so one swapped in after the look above
  // is removed itself and whatever it points to stays.
  if (::unlinkat(parent.get(), name.c_str(), 0) != 0) return errorOf(errno);
  return std::nullopt;
}

}  // namespace vantu
