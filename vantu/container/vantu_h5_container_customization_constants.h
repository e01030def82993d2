#pragma once
// The keys of the container flags: bars, safe areas and the status strip.

#include <array>
#include <optional>
#include <string_view>

namespace vantu {

enum class VantuH5ContainerCustomizationConstants {
  /// "vantuShowTitleBar", boolean: show (true) or hide the navigation bar.
  kVantuH5ContainerTitleBarVisibilityStatus,
  /// "vantuRenderAboveHomeIndicator", boolean: keep the web view clear of
  /// the bottom safe area.
  kVantuH5ContainerRenderAboveHomeIndicator,
  /// "vantuChangeBackButtonColor", hex colour: the navigation bar's tint.
  kVantuH5ContainerTitleBarTintColor,
  /// "vantuChangeStatusBarColor", hex colour: the strip behind the status bar.
  kVantuH5ContainerStatusbarBackgroundColor,
  /// "vantuResetStatusbarBackgroundColor", any value: removes the strip.
  kVantuH5ContainerResetStatusbarBackgroundColor,
};

/// Every case, in declaration order.
inline constexpr std::array<VantuH5ContainerCustomizationConstants, 5> kAllContainerCustomizationConstants = {
    VantuH5ContainerCustomizationConstants::kVantuH5ContainerTitleBarVisibilityStatus,
    VantuH5ContainerCustomizationConstants::kVantuH5ContainerRenderAboveHomeIndicator,
    VantuH5ContainerCustomizationConstants::kVantuH5ContainerTitleBarTintColor,
    VantuH5ContainerCustomizationConstants::kVantuH5ContainerStatusbarBackgroundColor,
    VantuH5ContainerCustomizationConstants::kVantuH5ContainerResetStatusbarBackgroundColor,
};

/// The flag key of a case.
std::string_view rawValue(VantuH5ContainerCustomizationConstants flag);
/// The case whose key is exactly `raw` (case-sensitive); nothing otherwise.
std::optional<VantuH5ContainerCustomizationConstants> containerCustomizationConstantFromRawValue(std::string_view raw);

}  // namespace vantu
