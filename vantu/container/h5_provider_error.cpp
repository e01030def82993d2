#include "vantu/container/h5_provider_error.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "vantu/core/fatal.h"
#include "vantu/platform/platform.h"

namespace vantu {
namespace {

constexpr std::array<std::pair<std::int64_t, std::string_view>, 6> kKinds{{
    {1, "Failed to create H5 Container, as the AppID is not Whitelisted."},
    {2, "Failed to create H5 Container, as the Domain of URL is not Whitelisted."},
    {3, "Failed to create H5 Container, as unable to fetch configuration."},
    {4, "Failed to create H5 Container, as unable to find WebView in container."},
    {5, "Failed to create H5 Container due to an Internal Error."},
    {6, "Failed to create H5 Container, as no URL found in startup params."},
}};

}  // namespace

H5ProviderError H5ProviderError::appIDWhitelistingError() { return {1, std::string(kKinds[0].second)}; }
H5ProviderError H5ProviderError::urlDomainWhitelistingError() { return {2, std::string(kKinds[1].second)}; }
H5ProviderError H5ProviderError::configurationError() { return {3, std::string(kKinds[2].second)}; }
H5ProviderError H5ProviderError::missingWebViewError() { return {4, std::string(kKinds[3].second)}; }
H5ProviderError H5ProviderError::internalError() { return {5, std::string(kKinds[4].second)}; }
H5ProviderError H5ProviderError::urlNotFoundInParamsError() { return {6, std::string(kKinds[5].second)}; }

std::string H5ProviderError::localizedDescription() const {
  return fmt::format("H5ProviderError => code: {} message: {}", code_, message_);
}

std::shared_ptr<const Image> H5ProviderError::getErrorImage() const {
  const auto& store = platform().images;
  if (!store) fatalError("H5ProviderError.getErrorImage(): the platform has no image store");
  auto image = store->imageNamed(kErrorImageName);
  if (!image) {
    fatalError("H5ProviderError.getErrorImage(): no image named \"nearby_servertakingtime\" in the application");
  }
  return image;
}

PlatformError H5ProviderError::toPlatformError() const {
  PlatformError error;
  error.domain = std::string(kErrorDomain);
  error.code = code_;
  error.localizedDescription = localizedDescription();
  return error;
}

std::optional<H5ProviderError> H5ProviderError::fromPlatformError(const PlatformError& error) {
  if (error.domain != kErrorDomain) return std::nullopt;
  for (const auto& [code, message] : kKinds) {
    if (code == error.code) return H5ProviderError(code, std::string(message));
  }
  return std::nullopt;
}

}  // namespace vantu
