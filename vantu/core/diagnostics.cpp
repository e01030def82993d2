#include "vantu/core/diagnostics.h"

#include "vantu/platform/platform.h"

namespace vantu {

void printDiagnostic(std::string_view line) { platform().console->printLine(line); }

}  // namespace vantu
