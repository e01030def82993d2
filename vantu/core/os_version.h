#pragma once
// Operating-system version gates, the way the reference platform's
// availability checks read: "at least major.minor".

#include <string_view>

namespace vantu {

/// True when `version` ("17.5", "11", "10.3.1") is at least major.minor.
/// A text that does not start with a number counts as version 0.
bool isVersionAtLeast(std::string_view version, int major, int minor = 0);
/// The same test on the installed platform's system version.
bool isSystemVersionAtLeast(int major, int minor = 0);

}  // namespace vantu
