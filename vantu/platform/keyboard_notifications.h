#pragma once
// Names of the notifications a platform posts on its notification centre
// when the on-screen keyboard is about to appear or disappear. They carry
// the reference platform's names; the library reads nothing from their
// object.

#include <string_view>

namespace vantu {

inline constexpr std::string_view kKeyboardWillShowNotification = "UIKeyboardWillShowNotification";
inline constexpr std::string_view kKeyboardWillHideNotification = "UIKeyboardWillHideNotification";

}  // namespace vantu
