#pragma once
// Colours written as hex text in container flags ("#FF8800", "ff8800").

#include <string_view>

#include "vantu/platform/geometry.h"

namespace vantu {

class VantuH5Color {
 public:
  /// The platform's grey: what any text that is not six hex digits gives.
  static constexpr Color kGrey{0.5, 0.5, 0.5, 1.0};

  /// Trims blanks and line breaks, upper-cases, drops one leading "#"; a
  /// text of any length other than 6 gives grey. The six characters are
  /// read as a hexadecimal number up to the first character that is not a
  /// hex digit (so "12ZZ34" is 0x12), and split into red, green and blue
  /// bytes, each over 255. Alpha is always 1.
  static Color colorFromHexString(std::string_view hex);
};

}  // namespace vantu
