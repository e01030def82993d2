#include "vantu/runtime/shared_state.h"

#include "vantu/container/h5_dynamic_provider.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/device/permission_handler_factory.h"
#include "vantu/runtime/environment_services.h"
#include "vantu/runtime/page_events.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {

void resetSharedStateForTesting() {
  Laizaxlu::shared().resetForTesting();
  H5DynamicProvider::shared().resetForTesting();
  UserDefaultsDataStoreImpl::resetForTesting();
  PermissionHandlerFactory::shared().resetForTesting();
  page::PageEvents::shared().resetForTesting();
  connectEnvironmentServices();
}

}  // namespace vantu
