#include "vantu/runtime/shared_state.h"

#include "vantu/core/laizaxlu.h"

namespace vantu {

void resetSharedStateForTesting() { Laizaxlu::shared().resetForTesting(); }

}  // namespace vantu
