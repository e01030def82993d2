#include "vantu/core/os_version.h"

#include <charconv>
#include <string>

#include "vantu/platform/platform.h"

namespace vantu {
namespace {

// Reads the next dot-separated number; 0 when there is none.
int nextComponent(std::string_view& text) {
  int value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc()) return 0;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (!text.empty() && text.front() == '.') text.remove_prefix(1);
  return value;
}

}  // namespace

bool isVersionAtLeast(std::string_view version, int major, int minor) {
  int actualMajor = nextComponent(version);
  int actualMinor = nextComponent(version);
  return actualMajor != major ? actualMajor > major : actualMinor >= minor;
}

bool isSystemVersionAtLeast(int major, int minor) {
  const std::string version = platform().device->systemVersion();
  return isVersionAtLeast(version, major, minor);
}

}  // namespace vantu
