#pragma once

#include <string_view>

namespace vantu {

struct LaizaxluConstants {
  /// The key under which a caller's unique app id travels to the host when
  /// a token is asked for.
  static constexpr std::string_view uAidKeyForAuthTokenAccess = "h5_uaid_caller";
};

}  // namespace vantu
