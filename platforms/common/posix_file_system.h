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
  // The folders on the way are opened one at a time with O_NOFOLLOW from a
  // descriptor of `folder`, and the last component is looked at with
  // fstatat(AT_SYMLINK_NOFOLLOW), opened with O_NOFOLLOW or removed with
  // unlinkat from its folder's descriptor, so a link swapped in at any step
  // is never followed.
  FileEntryKind doEntryKind(const std::filesystem::path& folder, const std::filesystem::path& relative) override;
  Result<Bytes, FileSystemError> doReadRegularFile(const std::filesystem::path& folder,
                                                   const std::filesystem::path& relative,
                                                   std::uint64_t maxBytes) override;
  std::optional<FileSystemError> doRemoveRegularFile(const std::filesystem::path& folder,
                                                     const std::filesystem::path& relative) override;
};

}  // namespace vantu
