#include "platforms/gtk/gtk_css.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace vantu::gtk {

std::string cssColor(const Color& c) {
  auto channel = [](double v) { return static_cast<int>(std::lround(std::clamp(v, 0.0, 1.0) * 255)); };
  return fmt::format("rgba({},{},{},{})", channel(c.red), channel(c.green), channel(c.blue),
                     std::clamp(c.alpha, 0.0, 1.0));
}

}  // namespace vantu::gtk
