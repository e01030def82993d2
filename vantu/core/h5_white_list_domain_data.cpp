#include "vantu/core/h5_white_list_domain_data.h"

namespace vantu {

void H5WhiteListDomainData::setupWith(std::vector<std::string> data) { whiteListedDomains_ = std::move(data); }

bool H5WhiteListDomainData::isURLWhitelisted(const Url& url) const {
  if (whiteListedDomains_.empty()) return false;
  for (const auto& entry : whiteListedDomains_) {
    const auto& host = url.host();
    if (!host) continue;
    // Searching for an empty text finds nothing.
    if (entry.empty()) continue;
    if (asciiLowercased(*host).find(asciiLowercased(entry)) != std::string::npos) return true;
  }
  return false;
}

}  // namespace vantu
