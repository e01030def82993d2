#pragma once
// A broken property is a finding: say what, then abort so that libFuzzer
// keeps the input.

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace vantu::fuzzing {

[[noreturn]] inline void finding(std::string_view what) {
  std::fprintf(stderr, "%.*s\n", static_cast<int>(what.size()), what.data());
  std::abort();
}

}  // namespace vantu::fuzzing
