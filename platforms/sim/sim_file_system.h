#pragma once
// The simulated device's file system: real moves on the real disk (the
// downloads it moves are real files), with failures a test can ask for.

#include <deque>

#include "platforms/common/posix_file_system.h"

namespace vantu::sim {

class SimFileSystem : public PosixFileSystem {
 public:
  /// The next move fails with `error` instead of moving anything; failures
  /// queued together are used up in order.
  void failNextMove(FileSystemError error) { failures_.push_back(std::move(error)); }

 protected:
  std::optional<FileSystemError> doMoveWithoutReplacing(const std::filesystem::path& from,
                                                        const std::filesystem::path& to) override;

 private:
  std::deque<FileSystemError> failures_;
};

}  // namespace vantu::sim
