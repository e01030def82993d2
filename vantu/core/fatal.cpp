#include "vantu/core/fatal.h"

#include <cstdio>
#include <cstdlib>

namespace vantu {

void fatalError(std::string_view message) {
  std::fprintf(stderr, "vantu-h5: fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
  std::fflush(stderr);
  std::abort();
}

}  // namespace vantu
