#pragma once
// Why a container could not be created. Codes 1, 2, 3, 4 and 6 are for the
// host's container code (whitelist checks, configuration fetch, web-view
// lookup, the URL in the startup parameters); the library itself only makes
// code 5, when no provider delegate is installed.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/images.h"
#include "vantu/platform/platform_error.h"

namespace vantu {

class H5ProviderError {
 public:
  /// The error domain these errors carry as platform errors.
  static constexpr std::string_view kErrorDomain = "H5ProviderError";
  /// The picture a host shows with a creation error.
  static constexpr std::string_view kErrorImageName = "nearby_servertakingtime";

  static H5ProviderError appIDWhitelistingError();
  static H5ProviderError urlDomainWhitelistingError();
  static H5ProviderError configurationError();
  static H5ProviderError missingWebViewError();
  static H5ProviderError internalError();
  static H5ProviderError urlNotFoundInParamsError();

  std::int64_t code() const { return code_; }
  const std::string& message() const { return message_; }

  /// "H5ProviderError => code: <code> message: <message>"
  std::string localizedDescription() const;
  /// The application's "nearby_servertakingtime" image. The host must ship
  /// it: without it (or without an image store) the process stops.
  std::shared_ptr<const Image> getErrorImage() const;

  /// As a platform error: domain "H5ProviderError", the code, and the
  /// localized description above.
  PlatformError toPlatformError() const;
  operator PlatformError() const { return toPlatformError(); }  // NOLINT(google-explicit-constructor)
  /// The provider error a platform error was made from, if it was.
  static std::optional<H5ProviderError> fromPlatformError(const PlatformError& error);

  bool operator==(const H5ProviderError&) const = default;

 private:
  H5ProviderError(std::int64_t code, std::string message) : code_(code), message_(std::move(message)) {}

  std::int64_t code_;
  std::string message_;
};

}  // namespace vantu
