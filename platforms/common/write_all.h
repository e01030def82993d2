#pragma once
// Writing a whole buffer to a file descriptor: write(2) may write less than
// asked, or be interrupted by a signal before writing anything.

#include <cstddef>

namespace vantu {

/// Writes all `size` bytes of `data` to `fd`, retrying short and
/// interrupted writes; false (errno set) when a write fails.
bool writeAll(int fd, const void* data, std::size_t size);

}  // namespace vantu
