#include "vantu/core/laizaxlu.h"

namespace vantu {

Laizaxlu& Laizaxlu::shared() {
  // Never destroyed: completions may still reach it while the process exits.
  static Laizaxlu* instance = new Laizaxlu();
  return *instance;
}

void Laizaxlu::setupWith(std::shared_ptr<H5DataProviders> h5DataProviders) {
  h5DataProviders_ = std::move(h5DataProviders);
}

void Laizaxlu::setupWhiteListAppData(H5WhiteListAppData::Table data) {
  whiteListAppData_ = std::make_shared<H5WhiteListAppData>();
  whiteListAppData_->setupWith(std::move(data));
}

void Laizaxlu::setupWhiteListWebDomains(std::vector<std::string> data) {
  whiteListWebDomains_ = std::make_shared<H5WhiteListDomainData>();
  whiteListWebDomains_->setWhiteListedDomains(std::move(data));
}

bool Laizaxlu::isWhitelisted(const std::string& /*uAid*/, AppType appType) const {
  if (appType == AppType::miniapp) return true;
  return whiteListAppData_ != nullptr;
}

bool Laizaxlu::isWhitelisted(const std::string& /*uniqueAppId*/) const { return whiteListAppData_ != nullptr; }

bool Laizaxlu::isAppWhitelistedWith(const std::string& uniqueAppId) const { return isWhitelisted(uniqueAppId); }

bool Laizaxlu::isURLWhitelisted(const Url& url) {
  if (shouldBypassWebDomainsWhitelisting_) {
    shouldBypassWebDomainsWhitelisting_ = false;
    return true;
  }
  if (!whiteListWebDomains_) return true;
  return whiteListWebDomains_->isURLWhitelisted(url);
}

void Laizaxlu::enableOneTimeBypassForWebDomainsWhitelisting() { shouldBypassWebDomainsWhitelisting_ = true; }

void Laizaxlu::attachKeyboardOffsetFixer(ViewController& viewController) {
  if (services_) services_->attachKeyboardOffsetFixer(viewController);
}

void Laizaxlu::clearAppSandbox() { clearAppSandbox(std::nullopt); }

void Laizaxlu::clearAppSandbox(std::optional<Dict> exemptedUniqueAppIdMap) {
  if (services_) services_->clearSandbox(std::move(exemptedUniqueAppIdMap));
}

void Laizaxlu::performSandboxMigration() {
  if (services_) services_->performSandboxMigration();
}

std::string Laizaxlu::getSandboxedFileNameForUniqueAppIdentifier(std::string_view appId) const {
  return services_ ? services_->sandboxedFileName(appId) : std::string();
}

void Laizaxlu::resetForTesting() {
  h5DataProviders_.reset();
  whiteListAppData_.reset();
  whiteListWebDomains_.reset();
  shouldBypassWebDomainsWhitelisting_ = false;
}

}  // namespace vantu
