#pragma once

#include <string>
#include <string_view>

#include "vantu/version.h"

namespace vantu {

class VersionUtil {
 public:
  static constexpr std::string_view kSDKVersion = VANTU_BRIDGE_SDK_VERSION;

  /// The host bundle's "CFBundleShortVersionString", or "" when missing.
  static std::string getAppVersion();
  static std::string getSDKVersion() { return std::string(kSDKVersion); }
};

}  // namespace vantu
