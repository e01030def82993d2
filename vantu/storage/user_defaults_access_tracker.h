#pragma once
// Remembers which storage domains the pages have touched, in a preference
// suite of its own (one `true` per domain name), because the preferences
// store offers no list of its suites. Used only from the data store's queue.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/platform/preferences.h"

namespace vantu {

class UserDefaultsAccessTracker {
 public:
  /// The suite the data store gives its tracker.
  static constexpr std::string_view kSuiteName = "_bedhjwbde33_Access_Tracking";

  explicit UserDefaultsAccessTracker(std::string suiteName) : suiteName_(std::move(suiteName)) {}

  const std::string& suiteName() const { return suiteName_; }

  /// Records `domain` (tracking it again changes nothing).
  void trackAccessFor(const std::string& domain);
  /// Every key of the tracker's suite. This store merges no global keys
  /// into a suite, so these are the suite's own keys, in key order.
  std::vector<std::string> getAllKeysIncludingMeta();
  /// Tracked names containing "_": the older names and, on purpose, the
  /// hashed ones too.
  std::vector<std::string> getAllDomainsOld();
  /// Tracked names containing "_flh5" (the hashed ones).
  std::vector<std::string> getAllDomainsNew();
  /// Forgets every tracked name containing "_". Does not synchronize.
  void clearDomains();

  /// The tracker's suite, opened on first use; nullptr when it could not be
  /// opened (then every operation does nothing or lists nothing). Never
  /// retried.
  const std::shared_ptr<PreferenceSuite>& userDefaults();

 private:
  std::vector<std::string> keys(std::string_view containing);

  std::string suiteName_;
  bool opened_ = false;
  std::shared_ptr<PreferenceSuite> userDefaults_;
};

}  // namespace vantu
