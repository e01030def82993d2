#pragma once
// Where the library's printed diagnostics go, one line at a time.

#include <string_view>

namespace vantu {

class Console {
 public:
  virtual ~Console() = default;
  void printLine(std::string_view line) { doPrintLine(line); }

 protected:
  virtual void doPrintLine(std::string_view line) = 0;
};

}  // namespace vantu
