#pragma once
// The process-wide environment: the host's providers and the two
// whitelists, set up at start-up on the main thread and read there.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/core/app_type.h"
#include "vantu/core/h5_data_providers.h"
#include "vantu/core/h5_white_list_app_data.h"
#include "vantu/core/h5_white_list_domain_data.h"
#include "vantu/core/laizaxlu_services.h"
#include "vantu/core/url.h"
#include "vantu/platform/object.h"
#include "vantu/value/value.h"

namespace vantu {

/// The environment ("Laizaxlu" is the contract's name for it): one per
/// process, holding what the host hands the library.
class Laizaxlu : public Object {
 public:
  /// The one instance, created on first use.
  static Laizaxlu& shared();

  /// Stores the bundle (nullptr clears it), replacing any earlier one.
  void setupWith(std::shared_ptr<H5DataProviders> h5DataProviders);
  const std::shared_ptr<H5DataProviders>& h5DataProviders() const { return h5DataProviders_; }

  // --- Whitelists. The host's container code calls the checks before it
  // asks for a container; nothing inside the library does.

  /// Installs a new app table (a new object: no reverse index carries over).
  void setupWhiteListAppData(H5WhiteListAppData::Table data);
  /// Installs a new domain list; an empty list rejects every URL.
  void setupWhiteListWebDomains(std::vector<std::string> data);
  /// `miniapp`: true. `generic`: whether an app table is installed. The id
  /// is not examined.
  bool isWhitelisted(const std::string& uAid, AppType appType) const;
  /// Whether an app table is installed; the id is not examined.
  bool isWhitelisted(const std::string& uniqueAppId) const;
  bool isAppWhitelistedWith(const std::string& uniqueAppId) const;
  /// Consumes a pending one-time bypass (answering true), else true without
  /// a domain list, else the list's answer.
  bool isURLWhitelisted(const Url& url);
  /// The next isURLWhitelisted call answers true whatever the URL. Enabling
  /// twice before a check still admits one check.
  void enableOneTimeBypassForWebDomainsWhitelisting();

  const std::shared_ptr<H5WhiteListAppData>& whiteListAppData() const { return whiteListAppData_; }
  const std::shared_ptr<H5WhiteListDomainData>& whiteListWebDomains() const { return whiteListWebDomains_; }
  bool shouldBypassWebDomainsWhitelisting() const { return shouldBypassWebDomainsWhitelisting_; }

  // --- Operations whose work belongs to the layers above core (the
  // key-value store and the keyboard fixer), reached through the services
  // the runtime connects with `connectServices`. Until then they do nothing
  // and the file name is empty.

  /// The services the operations below reach; nullptr disconnects them.
  void connectServices(std::shared_ptr<LaizaxluServices> services) { services_ = std::move(services); }

  /// Finds the screen's web view (recursively, through its child screens)
  /// and attaches a new WebViewKeyboardOffsetFixer for it as the screen's
  /// `offsetFixer`, replacing (and so releasing) any earlier one. Without a
  /// web view nothing happens.
  void attachKeyboardOffsetFixer(ViewController& viewController);

  // The three store operations are queued on the shared store and return at
  // once.

  /// Deletes every app's stored data.
  void clearAppSandbox();
  /// Deletes every app's stored data except that of the app ids that are
  /// keys of the dictionary (its values are ignored); nullopt exempts none.
  void clearAppSandbox(std::optional<Dict> exemptedUniqueAppIdMap);
  /// Moves data of older, unhashed domains to the hashed ones, once per
  /// installation.
  void performSandboxMigration();
  /// The hashed storage name of `appId` (45 characters), computed here and
  /// now on the caller's thread.
  std::string getSandboxedFileNameForUniqueAppIdentifier(std::string_view appId) const;

  /// Testing only: back to the state of a fresh process (the connected
  /// services stay: they hold no state of their own).
  void resetForTesting();

 private:
  Laizaxlu() = default;

  std::shared_ptr<H5DataProviders> h5DataProviders_;
  std::shared_ptr<H5WhiteListAppData> whiteListAppData_;
  std::shared_ptr<H5WhiteListDomainData> whiteListWebDomains_;
  bool shouldBypassWebDomainsWhitelisting_ = false;
  std::shared_ptr<LaizaxluServices> services_;
};

}  // namespace vantu
