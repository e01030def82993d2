#pragma once
// The app-id whitelist: a table from unique app identifier to the app's
// second identifying string (its "name", and in reverse its domain).
//
// Membership is deliberately not decided here: `isAppWhitelisted` and
// `doesAppExist` always answer true, and the environment's checks only ask
// whether a table was installed at all (see Laizaxlu).

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "vantu/platform/object.h"

namespace vantu {

/// The query side of an app whitelist, so that a host can supply its own.
class H5WhitelistAppDataProtocol : public virtual Object {
 public:
  virtual bool isAppWhitelisted() = 0;
  virtual bool doesAppExist(const std::string& uniqueAppId) = 0;
  virtual std::optional<std::string> getAppName(const std::string& uniqueAppId) = 0;
  virtual std::vector<std::string> getAllWhitelistedAppNames() = 0;
};

class H5WhiteListAppData : public H5WhitelistAppDataProtocol {
 public:
  /// Unique app identifier -> second string. Iterated in key order.
  using Table = std::map<std::string, std::string>;

  H5WhiteListAppData() = default;

  /// Installs `data` as the table. The reverse index is left as it is: once
  /// built it keeps answering from the table it was built from.
  virtual void setupWith(Table data);
  /// The identifier whose value is exactly `domain` (case-sensitive). The
  /// reverse index is built on the first lookup, and again on every lookup
  /// while it is empty. Building it before a table was installed is a
  /// programming error that stops the process.
  virtual std::optional<std::string> getUniqueAppIdentifier(const std::string& domain);

  /// Always true.
  bool isAppWhitelisted() override;
  /// Always true, whatever the identifier.
  bool doesAppExist(const std::string& uniqueAppId) override;
  /// The value stored for `uniqueAppId`; absent also when no table was installed.
  std::optional<std::string> getAppName(const std::string& uniqueAppId) override;
  /// The table's keys (the identifiers, not the values) in key order.
  /// Asking before a table was installed stops the process.
  std::vector<std::string> getAllWhitelistedAppNames() override;

  const std::optional<Table>& whiteListAppData() const { return whiteListAppData_; }
  /// Value -> identifier; empty until the first domain lookup.
  const std::map<std::string, std::string>& reverseWhitelist() const { return reverseWhitelist_; }

 private:
  std::optional<Table> whiteListAppData_;
  std::map<std::string, std::string> reverseWhitelist_;
};

}  // namespace vantu
