#include "vantu/runtime/shared_state.h"

#include "vantu/container/h5_dynamic_provider.h"
#include "vantu/core/laizaxlu.h"

namespace vantu {

void resetSharedStateForTesting() {
  Laizaxlu::shared().resetForTesting();
  H5DynamicProvider::shared().resetForTesting();
}

}  // namespace vantu
