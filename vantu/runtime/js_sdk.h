#pragma once
// The JavaScript SDK (sdk/js/vantu.js) that containers inject into pages,
// built into the library from the file at build time.

#include <string_view>

namespace vantu {

std::string_view javascriptSdkSource();

}  // namespace vantu
