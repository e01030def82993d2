#pragma once
// Colours of the UI model as CSS colour text for GTK style sheets.

#include <string>

#include "vantu/platform/geometry.h"

namespace vantu::gtk {

/// "rgba(r,g,b,a)" with 0-255 channels, each component clamped.
std::string cssColor(const Color& color);

}  // namespace vantu::gtk
