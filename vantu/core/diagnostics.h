#pragma once
// The one place where the library prints its diagnostic lines (customisers'
// rejected flags and the like). They go to the platform console, which a
// test or the headless runner can capture.

#include <string_view>

namespace vantu {

void printDiagnostic(std::string_view line);

}  // namespace vantu
