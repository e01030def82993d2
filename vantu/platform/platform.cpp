#include "vantu/platform/platform.h"

#include <cstdio>
#include <cstdlib>

namespace vantu {
namespace {
std::shared_ptr<Platform>& installed() {
  static std::shared_ptr<Platform> current;
  return current;
}
}  // namespace

void installPlatform(std::shared_ptr<Platform> platform) { installed() = std::move(platform); }

bool hasPlatform() { return installed() != nullptr; }

Platform& platform() {
  auto& current = installed();
  if (!current) {
    std::fputs("vantu-h5: no platform installed; call vantu::installPlatform first\n", stderr);
    std::abort();
  }
  return *current;
}

}  // namespace vantu
