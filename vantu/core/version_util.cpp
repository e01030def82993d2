#include "vantu/core/version_util.h"

#include "vantu/platform/platform.h"

namespace vantu {

std::string VersionUtil::getAppVersion() {
  auto info = platform().device->bundleInfo();
  if (!info) return "";
  return info->getString("CFBundleShortVersionString").value_or("");
}

}  // namespace vantu
