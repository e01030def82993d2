#pragma once
// The file-system port on the OS's own calls.

#include "vantu/platform/file_system.h"

namespace vantu {

class PosixFileSystem : public FileSystem {
 protected:
  /// renameat2 with RENAME_NOREPLACE; on a file system without the flag, a
  /// hard link (just as exclusive) and the removal of the old name.
  std::optional<FileSystemError> doMoveWithoutReplacing(const std::filesystem::path& from,
                                                        const std::filesystem::path& to) override;
};

}  // namespace vantu
