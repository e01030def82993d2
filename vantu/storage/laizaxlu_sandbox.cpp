// Laizaxlu's sandbox operations. They live here, beside the store, because
// vantu/core does not depend on vantu/storage.

#include "vantu/core/laizaxlu.h"
#include "vantu/storage/secure_string_hasher.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {

void Laizaxlu::clearAppSandbox() { UserDefaultsDataStoreImpl::shared()->clearSandbox(std::nullopt); }

void Laizaxlu::clearAppSandbox(std::optional<Dict> exemptedUniqueAppIdMap) {
  UserDefaultsDataStoreImpl::shared()->clearSandbox(std::move(exemptedUniqueAppIdMap));
}

void Laizaxlu::performSandboxMigration() { UserDefaultsDataStoreImpl::shared()->performMigration(); }

std::string Laizaxlu::getSandboxedFileNameForUniqueAppIdentifier(std::string_view appId) const {
  return sandboxDomainName(appId);
}

}  // namespace vantu
