#pragma once
// The sandboxed key-value store as the storage bridges and the environment
// see it. Every operation returns at once and completes on the store's own
// serial queue; callers that answer a page switch to the main queue.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vantu/platform/platform_error.h"
#include "vantu/value/value.h"

namespace vantu {

/// The error of a domain whose suite cannot be opened: domain "h5-ios",
/// code 0, "User Defaults could not be initialized".
PlatformError storeError();

class UserDefaultsDataStore {
 public:
  using GetCompletion = std::function<void(bool success, std::optional<PlatformError> error, Dict result)>;
  using Completion = std::function<void(bool success, std::optional<PlatformError> error)>;

  virtual ~UserDefaultsDataStore() = default;

  /// {"data": {key: value, ...}}, a missing key reading "".
  virtual void getData(std::string domain, std::vector<std::string> keys, GetCompletion completion) = 0;
  /// Stores every entry (string keys), then synchronizes.
  virtual void saveData(std::string domain, Dict data, Completion completion) = 0;
  /// Removes the keys; absent keys are no error. Not synchronized.
  virtual void removeData(std::string domain, std::vector<std::string> keys, Completion completion) = 0;
  /// Moves the data of older, unhashed domains to the hashed ones, once per
  /// installation.
  virtual void performMigration() = 0;
  /// Deletes every tracked hashed domain but those of the exempted app ids
  /// (the dictionary's keys), then forgets every tracked domain.
  virtual void clearSandbox(std::optional<Dict> exemptedUniqueAppIdMap) = 0;
};

}  // namespace vantu
