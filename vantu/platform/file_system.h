#pragma once
// The file operations the library cannot do with plain reads and writes:
// moving a finished download into place without ever replacing a file, and
// looking at, reading or removing a file of an app's folder without ever
// following a symbolic link that another local process may have put there.

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "vantu/value/result.h"
#include "vantu/value/value.h"

namespace vantu {

/// Why a file operation failed.
struct FileSystemError {
  enum class Kind { alreadyExists, other };
  Kind kind = Kind::other;
  /// The OS error number, 0 when there is none.
  int code = 0;
  /// The OS's own description ("Permission denied").
  std::string reason;
};

/// What a path names, looked at without following links.
enum class FileEntryKind {
  /// Nothing, or nothing reachable: a link on the way counts as a dead end.
  missing,
  regularFile,
  directory,
  symbolicLink,
  /// A pipe, socket or device.
  other,
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Moves the file `from` to `to` unless something exists at `to` already
  /// (nothing is ever replaced, even when two moves race for one name).
  std::optional<FileSystemError> moveWithoutReplacing(const std::filesystem::path& from,
                                                      const std::filesystem::path& to) {
    return doMoveWithoutReplacing(from, to);
  }

  // The operations below take a trusted `folder` (the platform's own, links
  // in it are the platform's business) and a `relative` path beneath it;
  // every component of `relative` is reached without following a link and
  // `relative` never climbs out ("..") or starts over ("/").

  /// What `relative` names beneath `folder`.
  FileEntryKind entryKind(const std::filesystem::path& folder, const std::filesystem::path& relative) {
    if (!staysBeneath(relative)) return FileEntryKind::missing;
    return doEntryKind(folder, relative);
  }
  /// The bytes of the regular file `relative` beneath `folder`, at most
  /// `maxBytes` of them (a larger file fails with EFBIG). A link, like a
  /// missing file, fails with ENOENT; anything else that is not a regular
  /// file with its own error.
  Result<Bytes, FileSystemError> readRegularFile(const std::filesystem::path& folder,
                                                 const std::filesystem::path& relative, std::uint64_t maxBytes) {
    if (!staysBeneath(relative)) return FileSystemError{FileSystemError::Kind::other, ENOENT, "No such file or directory"};
    return doReadRegularFile(folder, relative, maxBytes);
  }
  /// Removes the regular file `relative` beneath `folder`. A link, like a
  /// missing file, fails with ENOENT and stays; a directory fails with EISDIR.
  std::optional<FileSystemError> removeRegularFile(const std::filesystem::path& folder,
                                                   const std::filesystem::path& relative) {
    if (!staysBeneath(relative)) return FileSystemError{FileSystemError::Kind::other, ENOENT, "No such file or directory"};
    return doRemoveRegularFile(folder, relative);
  }

 protected:
  virtual std::optional<FileSystemError> doMoveWithoutReplacing(const std::filesystem::path& from,
                                                                const std::filesystem::path& to) = 0;
  virtual FileEntryKind doEntryKind(const std::filesystem::path& folder, const std::filesystem::path& relative) = 0;
  virtual Result<Bytes, FileSystemError> doReadRegularFile(const std::filesystem::path& folder,
                                                           const std::filesystem::path& relative,
                                                           std::uint64_t maxBytes) = 0;
  virtual std::optional<FileSystemError> doRemoveRegularFile(const std::filesystem::path& folder,
                                                             const std::filesystem::path& relative) = 0;

 private:
  /// Not empty, not absolute, and no component is "." or "..".
  static bool staysBeneath(const std::filesystem::path& relative) {
    if (relative.empty() || relative.has_root_path()) return false;
    for (const auto& part : relative) {
      if (part == "." || part == ".." || part.empty()) return false;
    }
    return true;
  }
};

}  // namespace vantu
