#pragma once
// The kind of a container's content.

#include <optional>
#include <string_view>

namespace vantu {

enum class AppType { generic = 0, miniapp = 1 };

/// "generic" or "miniapp".
std::string_view rawValue(AppType type);
/// Only the exact raw strings (case-sensitive) make an AppType.
std::optional<AppType> appTypeFromRawValue(std::string_view raw);

}  // namespace vantu
