#pragma once
// The web-domain whitelist: domain fragments matched against a URL's host.

#include <string>
#include <vector>

#include "vantu/core/url.h"
#include "vantu/platform/object.h"

namespace vantu {

class H5WhiteListDomainData : public Object {
 public:
  H5WhiteListDomainData() = default;

  /// Replaces the list.
  void setupWith(std::vector<std::string> data);
  /// True when, for some entry in list order, the URL's lower-cased host
  /// contains the lower-cased entry anywhere (a plain substring test, not a
  /// suffix or label test). An empty list, a URL without a host and an empty
  /// entry match nothing. Lower-casing touches ASCII letters only.
  bool isURLWhitelisted(const Url& url) const;

  const std::vector<std::string>& whiteListedDomains() const { return whiteListedDomains_; }
  void setWhiteListedDomains(std::vector<std::string> domains) { whiteListedDomains_ = std::move(domains); }

 private:
  std::vector<std::string> whiteListedDomains_;
};

}  // namespace vantu
