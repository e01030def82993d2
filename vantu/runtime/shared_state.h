#pragma once
// Testing support: puts every process-wide instance of the library back in
// the state of a fresh process, so that no test sees another's state.

namespace vantu {

void resetSharedStateForTesting();

}  // namespace vantu
