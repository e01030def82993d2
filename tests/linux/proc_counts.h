#pragma once
// Counts of this process's open descriptors and threads, read from /proc.

#include <dirent.h>

#include <chrono>
#include <cstddef>
#include <thread>

namespace vantu::linux_platform {

inline std::size_t countEntries(const char* directory) {
  std::size_t count = 0;
  if (DIR* dir = opendir(directory)) {
    while (dirent* entry = readdir(dir)) {
      if (entry->d_name[0] != '.') ++count;
    }
    closedir(dir);
  }
  return count;  // includes the descriptor opendir itself held
}

inline std::size_t countOpenFiles() { return countEntries("/proc/self/fd"); }
inline std::size_t countThreads() { return countEntries("/proc/self/task"); }

/// The thread count once it is at most `limit`, or after a safety bound. A
/// joined thread has finished running, but the kernel removes its
/// /proc/self/task entry a moment later (so a count taken just after a join
/// may be one too high, never too low).
inline std::size_t threadsSettledAtMost(std::size_t limit) {
  using namespace std::chrono_literals;
  auto deadline = std::chrono::steady_clock::now() + 10s;
  auto count = countThreads();
  while (count > limit && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(1ms);
    count = countThreads();
  }
  return count;
}

}  // namespace vantu::linux_platform
