#pragma once
// Counts of this process's open descriptors and threads, read from /proc.

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace vantu::linux_platform {

inline std::size_t countEntries(const char* directory) {  // includes the iterator's own descriptor
  std::filesystem::directory_iterator entries(directory);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}
inline std::size_t countOpenFiles() { return countEntries("/proc/self/fd"); }
inline std::size_t countThreads() { return countEntries("/proc/self/task"); }

/// The thread count once it is at most `limit` (a joined thread's task entry
/// goes a moment later), or after a 10 s safety bound.
inline std::size_t threadsSettledAtMost(std::size_t limit) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  auto count = countThreads();
  for (; count > limit && std::chrono::steady_clock::now() < deadline; count = countThreads()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return count;
}

}  // namespace vantu::linux_platform
