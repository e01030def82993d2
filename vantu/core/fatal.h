#pragma once
// Programming errors that the library treats as fatal: the message goes to
// standard error and the process ends.

#include <string_view>

namespace vantu {

[[noreturn]] void fatalError(std::string_view message);

}  // namespace vantu
