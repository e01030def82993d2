#pragma once
// Testing support: puts every process-wide instance of the library back in
// the state of a fresh process, so that no test sees another's state, and
// connects the environment's services (as a program does at start-up).

namespace vantu {

void resetSharedStateForTesting();

}  // namespace vantu
