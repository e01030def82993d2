#include "vantu/core/h5_white_list_app_data.h"

#include "vantu/core/fatal.h"

namespace vantu {

void H5WhiteListAppData::setupWith(Table data) {
  whiteListAppData_ = std::move(data);
}

std::optional<std::string> H5WhiteListAppData::getUniqueAppIdentifier(const std::string& domain) {
  if (reverseWhitelist_.empty()) {
    if (!whiteListAppData_) {
      fatalError("H5WhiteListAppData: getUniqueAppIdentifier(domain:) called before setupWith(data:)");
    }
    // Where two identifiers share a value, the one visited later wins.
    for (const auto& [uniqueAppId, value] : *whiteListAppData_) reverseWhitelist_[value] = uniqueAppId;
  }
  auto it = reverseWhitelist_.find(domain);
  if (it == reverseWhitelist_.end()) return std::nullopt;
  return it->second;
}

bool H5WhiteListAppData::isAppWhitelisted() { return true; }

bool H5WhiteListAppData::doesAppExist(const std::string& /*uniqueAppId*/) { return true; }

std::optional<std::string> H5WhiteListAppData::getAppName(const std::string& uniqueAppId) {
  if (!whiteListAppData_) return std::nullopt;
  auto it = whiteListAppData_->find(uniqueAppId);
  if (it == whiteListAppData_->end()) return std::nullopt;
  return it->second;
}

std::vector<std::string> H5WhiteListAppData::getAllWhitelistedAppNames() {
  if (!whiteListAppData_) {
    fatalError("H5WhiteListAppData: getAllWhitelistedAppNames() called before setupWith(data:)");
  }
  std::vector<std::string> names;
  names.reserve(whiteListAppData_->size());
  for (const auto& entry : *whiteListAppData_) names.push_back(entry.first);
  return names;
}

}  // namespace vantu
