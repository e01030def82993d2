#include "platforms/common/posix_file_system.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vantu {

std::optional<FileSystemError> PosixFileSystem::doMoveWithoutReplacing(const std::filesystem::path& from,
                                                                       const std::filesystem::path& to) {
  int result = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
  if (result != 0 && errno == EINVAL) {
    result = ::link(from.c_str(), to.c_str());
    if (result == 0) ::unlink(from.c_str());
  }
  if (result == 0) return std::nullopt;
  const int error = errno;
  return FileSystemError{error == EEXIST ? FileSystemError::Kind::alreadyExists : FileSystemError::Kind::other, error,
                         std::strerror(error)};
}

}  // namespace vantu
