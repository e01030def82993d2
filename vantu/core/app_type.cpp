#include "vantu/core/app_type.h"

namespace vantu {

std::string_view rawValue(AppType type) { return type == AppType::miniapp ? "miniapp" : "generic"; }

std::optional<AppType> appTypeFromRawValue(std::string_view raw) {
  if (raw == "generic") return AppType::generic;
  if (raw == "miniapp") return AppType::miniapp;
  return std::nullopt;
}

}  // namespace vantu
