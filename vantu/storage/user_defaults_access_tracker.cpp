#include "vantu/storage/user_defaults_access_tracker.h"

#include "vantu/platform/platform.h"

namespace vantu {

const std::shared_ptr<PreferenceSuite>& UserDefaultsAccessTracker::userDefaults() {
  if (!opened_) {
    opened_ = true;
    if (auto& preferences = platform().preferences) userDefaults_ = preferences->suite(suiteName_);
  }
  return userDefaults_;
}

void UserDefaultsAccessTracker::trackAccessFor(const std::string& domain) {
  const auto& suite = userDefaults();
  if (!suite) return;
  // Presence is all that counts, so a domain tracked before costs a read,
  // not a write transaction.
  auto current = suite->get(domain);
  if (current.ok() && current.value() == PreferenceValue(true)) return;
  suite->set(domain, PreferenceValue(true));
}

std::vector<std::string> UserDefaultsAccessTracker::getAllKeysIncludingMeta() {
  const auto& suite = userDefaults();
  if (!suite) return {};
  auto keys = suite->keys();
  return keys.ok() ? std::move(keys.value()) : std::vector<std::string>{};
}

std::vector<std::string> UserDefaultsAccessTracker::keys(std::string_view containing) {
  std::vector<std::string> matching;
  for (auto& key : getAllKeysIncludingMeta()) {
    if (key.find(containing) != std::string::npos) matching.push_back(std::move(key));
  }
  return matching;
}

std::vector<std::string> UserDefaultsAccessTracker::getAllDomainsOld() { return keys("_"); }

std::vector<std::string> UserDefaultsAccessTracker::getAllDomainsNew() { return keys("_flh5"); }

void UserDefaultsAccessTracker::clearDomains() {
  const auto& suite = userDefaults();
  if (!suite) return;
  auto doomed = keys("_");
  if (!doomed.empty()) suite->remove(doomed);
}

}  // namespace vantu
