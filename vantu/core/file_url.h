#pragma once
// File URLs ("file:///dir/a%20b.png") as the pickers hand files around:
// made from an absolute path, percent-encoding every byte outside the
// unreserved characters and "/", and turned back into a path.

#include <optional>
#include <string>
#include <string_view>

namespace vantu {

/// "file://" followed by the encoded absolute path.
std::string fileUrlFromPath(std::string_view absolutePath);
/// The decoded path of a "file:" URL with no host or the host "localhost";
/// nothing for any other URL or a broken escape.
std::optional<std::string> pathFromFileUrl(std::string_view url);
/// The last non-empty piece of `path` split at "/" ("" for "/" or "").
std::string lastPathComponent(std::string_view path);

}  // namespace vantu
