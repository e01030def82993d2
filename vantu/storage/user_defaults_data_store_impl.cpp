#include "vantu/storage/user_defaults_data_store_impl.h"

#include <mutex>
#include <unordered_set>

#include "vantu/core/laizaxlu.h"
#include "vantu/platform/platform.h"
#include "vantu/storage/secure_string_hasher.h"

namespace vantu {

PlatformError storeError() {
  PlatformError error;
  error.domain = "h5-ios";
  error.code = 0;
  error.localizedDescription = "User Defaults could not be initialized";
  return error;
}

namespace {

/// A suite that opened but then failed to read or write (a damaged file, a
/// full disk). The page sees the bridge's generic message either way.
PlatformError operationError(const PreferenceError& cause) {
  PlatformError error;
  error.domain = "h5-ios";
  error.code = 1;
  error.localizedDescription = "User Defaults operation failed";
  error.localizedFailureReason = cause.message;
  return error;
}

Dict errorResult(const PlatformError& error) {
  return Dict{{"error", Dict{{"domain", error.domain}, {"code", error.code}, {"message", error.localizedDescription}}}};
}

std::shared_ptr<PreferenceSuite> openSuite(const std::string& name) {
  auto& preferences = platform().preferences;
  return preferences ? preferences->suite(name) : nullptr;
}

std::shared_ptr<PreferenceSuite> standardSuite() {
  auto& preferences = platform().preferences;
  return preferences ? preferences->standard() : nullptr;
}

bool removePersistentDomain(const std::string& name) {
  auto& preferences = platform().preferences;
  return preferences && preferences->removePersistentDomain(name);
}

std::mutex& sharedMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<UserDefaultsDataStoreImpl>& sharedSlot() {
  static auto* slot = new std::shared_ptr<UserDefaultsDataStoreImpl>();
  return *slot;
}

}  // namespace

std::shared_ptr<UserDefaultsDataStoreImpl> UserDefaultsDataStoreImpl::shared() {
  std::lock_guard lock(sharedMutex());
  auto& slot = sharedSlot();
  if (!slot) slot = make();
  return slot;
}

void UserDefaultsDataStoreImpl::resetForTesting() {
  std::shared_ptr<UserDefaultsDataStoreImpl> old;
  {
    std::lock_guard lock(sharedMutex());
    old = std::exchange(sharedSlot(), nullptr);
  }
}

std::shared_ptr<UserDefaultsDataStoreImpl> UserDefaultsDataStoreImpl::make() {
  return std::shared_ptr<UserDefaultsDataStoreImpl>(new UserDefaultsDataStoreImpl());
}

UserDefaultsDataStoreImpl::UserDefaultsDataStoreImpl()
    : serialbackgroundQueue_(platform().dispatch->makeSerialQueue(std::string(kQueueLabel))) {}

UserDefaultsAccessTracker& UserDefaultsDataStoreImpl::accessTracker() {
  if (!accessTracker_) {
    accessTracker_ = std::make_unique<UserDefaultsAccessTracker>(std::string(UserDefaultsAccessTracker::kSuiteName));
  }
  return *accessTracker_;
}

template <class Work>
void UserDefaultsDataStoreImpl::enqueue(Work work) {
  serialbackgroundQueue_->async([weak = weak_from_this(), work = std::move(work)]() mutable {
    auto self = weak.lock();
    if (!self) return;
    work(*self);
  });
}

void UserDefaultsDataStoreImpl::getData(std::string domain, std::vector<std::string> keys, GetCompletion completion) {
  enqueue([domain = std::move(domain), keys = std::move(keys), completion = std::move(completion)](
              UserDefaultsDataStoreImpl& self) {
    auto suite = openSuite(domain);
    if (!suite) {
      auto error = storeError();
      completion(false, error, errorResult(error));
      return;
    }
    auto values = suite->get(keys);
    if (!values.ok()) {
      auto error = operationError(values.error());
      completion(false, error, errorResult(error));
      return;
    }
    Dict result;
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const auto& value = values.value()[i];
      result.set(keys[i], value ? value->toValue() : Value(""));
    }
    self.accessTracker().trackAccessFor(domain);
    completion(true, std::nullopt, Dict{{"data", std::move(result)}});
  });
}

void UserDefaultsDataStoreImpl::saveData(std::string domain, Dict data, Completion completion) {
  enqueue([domain = std::move(domain), data = std::move(data), completion = std::move(completion)](
              UserDefaultsDataStoreImpl& self) {
    auto suite = openSuite(domain);
    if (!suite) {
      completion(false, storeError());
      return;
    }
    PreferenceValue::Map entries;
    entries.reserve(data.size());
    for (const auto& [key, value] : data) {
      entries.emplace_back(key.isString() ? *key.string() : key.text(), PreferenceValue::fromValue(value));
    }
    if (!entries.empty()) {
      auto written = suite->set(std::move(entries));
      if (!written.ok()) {
        completion(false, operationError(written.error()));
        return;
      }
    }
    auto synchronized = suite->synchronize();
    if (!synchronized.ok()) {
      completion(false, operationError(synchronized.error()));
      return;
    }
    self.accessTracker().trackAccessFor(domain);
    completion(true, std::nullopt);
  });
}

void UserDefaultsDataStoreImpl::removeData(std::string domain, std::vector<std::string> keys, Completion completion) {
  enqueue([domain = std::move(domain), keys = std::move(keys), completion = std::move(completion)](
              UserDefaultsDataStoreImpl& self) {
    auto suite = openSuite(domain);
    if (!suite) {
      completion(false, storeError());
      return;
    }
    auto removed = suite->remove(keys);
    if (!removed.ok()) {
      completion(false, operationError(removed.error()));
      return;
    }
    self.accessTracker().trackAccessFor(domain);
    completion(true, std::nullopt);
  });
}

void UserDefaultsDataStoreImpl::performMigration() {
  // The whitelist installed when migration was asked for (the environment
  // is set up and read on the main thread; the work runs on the queue).
  auto whiteList = Laizaxlu::shared().whiteListAppData();
  enqueue([whiteList = std::move(whiteList)](UserDefaultsDataStoreImpl& self) {
    auto standard = standardSuite();
    // Without the standard suite the flag can be neither read nor set:
    // nothing is moved rather than moving again on every start.
    if (!standard) return;
    auto flag = standard->get(kMigrationFlag);
    if (!flag.ok()) return;
    if (flag.value() && flag.value()->asBool() && *flag.value()->asBool()) return;

    std::vector<std::pair<std::string, std::string>> oldDomainToAppIdMap;
    for (auto& name : self.accessTracker().getAllDomainsOld()) {
      std::optional<std::string> appId;
      // A whitelist object always holds a table (Laizaxlu installs both
      // together), so the reverse lookup cannot meet an unset table.
      if (whiteList) appId = whiteList->getUniqueAppIdentifier(name);
      if (!appId) appId = name.substr(0, name.find('_'));
      if (appId->empty()) continue;
      // Tracked names are unique keys, so each name appears once.
      oldDomainToAppIdMap.emplace_back(std::move(name), std::move(*appId));
    }
    for (const auto& [oldName, appId] : oldDomainToAppIdMap) self.migrateDomain(oldName, sandboxDomainName(appId));

    standard->set(std::string(kMigrationFlag), PreferenceValue(true));
    standard->synchronize();
  });
}

void UserDefaultsDataStoreImpl::migrateDomain(const std::string& from, const std::string& to) {
  if (from == to) return;  // copying onto itself and deleting would lose it
  auto source = openSuite(from);
  if (!source) return;
  auto target = openSuite(to);
  if (!target) return;
  auto entries = source->dictionaryRepresentation();
  if (!entries.ok()) return;
  if (!entries.value().empty() && !target->set(std::move(entries.value())).ok()) return;
  removePersistentDomain(from);
  if (const auto& tracker = accessTracker().userDefaults()) {
    tracker->remove(from);
    tracker->set(to, PreferenceValue(true));
  }
}

void UserDefaultsDataStoreImpl::clearSandbox(std::optional<Dict> exemptedUniqueAppIdMap) {
  enqueue([exempted = std::move(exemptedUniqueAppIdMap)](UserDefaultsDataStoreImpl& self) {
    auto domains = self.accessTracker().getAllDomainsNew();
    if (exempted) {
      std::unordered_set<std::string> kept;
      for (const auto& [appId, ignored] : *exempted) {
        kept.insert(sandboxDomainName(appId.isString() ? *appId.string() : appId.text()));
      }
      std::erase_if(domains, [&](const std::string& domain) { return kept.count(domain) > 0; });
    }
    for (const auto& domain : domains) removePersistentDomain(domain);
    self.accessTracker().clearDomains();
  });
}

}  // namespace vantu
