#include "vantu/container/vantu_h5_container_customization_constants.h"

namespace vantu {

std::string_view rawValue(VantuH5ContainerCustomizationConstants flag) {
  using enum VantuH5ContainerCustomizationConstants;
  switch (flag) {
    case kVantuH5ContainerTitleBarVisibilityStatus: return "vantuShowTitleBar";
    case kVantuH5ContainerRenderAboveHomeIndicator: return "vantuRenderAboveHomeIndicator";
    case kVantuH5ContainerTitleBarTintColor: return "vantuChangeBackButtonColor";
    case kVantuH5ContainerStatusbarBackgroundColor: return "vantuChangeStatusBarColor";
    case kVantuH5ContainerResetStatusbarBackgroundColor: return "vantuResetStatusbarBackgroundColor";
  }
  return {};
}

std::optional<VantuH5ContainerCustomizationConstants> containerCustomizationConstantFromRawValue(std::string_view raw) {
  for (auto flag : kAllContainerCustomizationConstants) {
    if (rawValue(flag) == raw) return flag;
  }
  return std::nullopt;
}

}  // namespace vantu
