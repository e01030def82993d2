#pragma once
// The one implementation of UserDefaultsDataStore, on the platform's
// preferences port. All work runs one operation at a time on the serial
// queue "com.vantu.UserDefaultsOpsProcessing"; queued work holds the store
// weakly and does nothing (no completion) once the store is gone.

#include <memory>
#include <string_view>

#include "vantu/platform/dispatch.h"
#include "vantu/storage/user_defaults_access_tracker.h"
#include "vantu/storage/user_defaults_data_store.h"

namespace vantu {

class UserDefaultsDataStoreImpl : public UserDefaultsDataStore,
                                  public std::enable_shared_from_this<UserDefaultsDataStoreImpl> {
 public:
  static constexpr std::string_view kQueueLabel = "com.vantu.UserDefaultsOpsProcessing";
  /// The standard suite's flag that the one-time migration has run.
  static constexpr std::string_view kMigrationFlag = "h5_data_snd_box_mig";

  /// The process's store, made on first use from the installed platform.
  static std::shared_ptr<UserDefaultsDataStoreImpl> shared();
  /// Testing only: drops the shared store (work it queued then does nothing).
  static void resetForTesting();

  /// A store of its own (tests); the bridges and Laizaxlu use `shared()`.
  static std::shared_ptr<UserDefaultsDataStoreImpl> make();

  void getData(std::string domain, std::vector<std::string> keys, GetCompletion completion) override;
  void saveData(std::string domain, Dict data, Completion completion) override;
  void removeData(std::string domain, std::vector<std::string> keys, Completion completion) override;
  void performMigration() override;
  void clearSandbox(std::optional<Dict> exemptedUniqueAppIdMap) override;

  const std::shared_ptr<SerialQueue>& serialbackgroundQueue() const { return serialbackgroundQueue_; }
  /// The tracker, made on first use (suite "_bedhjwbde33_Access_Tracking").
  /// Only from the store's queue.
  UserDefaultsAccessTracker& accessTracker();

 private:
  UserDefaultsDataStoreImpl();
  /// Queues `work` holding the store weakly.
  template <class Work>
  void enqueue(Work work);
  void migrateDomain(const std::string& from, const std::string& to);

  std::shared_ptr<SerialQueue> serialbackgroundQueue_;
  std::unique_ptr<UserDefaultsAccessTracker> accessTracker_;
};

}  // namespace vantu
