#pragma once
// The file operations the library cannot do with plain reads and writes:
// moving a finished download into place without ever replacing a file.

#include <filesystem>
#include <optional>
#include <string>

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

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Moves the file `from` to `to` unless something exists at `to` already
  /// (nothing is ever replaced, even when two moves race for one name).
  std::optional<FileSystemError> moveWithoutReplacing(const std::filesystem::path& from,
                                                      const std::filesystem::path& to) {
    return doMoveWithoutReplacing(from, to);
  }

 protected:
  virtual std::optional<FileSystemError> doMoveWithoutReplacing(const std::filesystem::path& from,
                                                                const std::filesystem::path& to) = 0;
};

}  // namespace vantu
