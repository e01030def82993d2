#pragma once

#include <string>
#include <string_view>

namespace vantu {

class VersionUtil {
 public:
  static constexpr std::string_view kSDKVersion = "5.6.0";

  /// The host bundle's "CFBundleShortVersionString", or "" when missing.
  static std::string getAppVersion();
  static std::string getSDKVersion() { return std::string(kSDKVersion); }
};

}  // namespace vantu
