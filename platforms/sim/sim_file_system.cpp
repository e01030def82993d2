#include "platforms/sim/sim_file_system.h"

namespace vantu::sim {

std::optional<FileSystemError> SimFileSystem::doMoveWithoutReplacing(const std::filesystem::path& from,
                                                                     const std::filesystem::path& to) {
  if (failures_.empty()) return PosixFileSystem::doMoveWithoutReplacing(from, to);
  FileSystemError failure = std::move(failures_.front());
  failures_.pop_front();
  return failure;
}

}  // namespace vantu::sim
