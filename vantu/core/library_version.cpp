#include "vantu/version.h"

namespace vantu {

std::string_view libraryVersion() noexcept { return VANTU_VERSION_STRING; }

}  // namespace vantu
