#pragma once
// The private folder that downloads land in, "H5DOWNLOADS" under the
// platform's documents directory, and the naming rules of its files.
//
// Pages address files only by name. A name must be one path component (not
// empty, not "." or "..", no "/" and no NUL, at most 255 bytes); anything
// else is refused before any path is formed, so no file outside the folder
// is ever read, written or removed on a page's behalf.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/platform_error.h"

namespace vantu {

inline constexpr std::string_view kDownloadFolderName = "H5DOWNLOADS";

/// Whether `name` can name a file directly inside the download folder.
bool isSingleFileName(std::string_view name);

class DownloadFolder {
 public:
  /// The folder, or nothing when the platform has no documents directory.
  static std::optional<std::filesystem::path> path();
  /// Where the file `name` lives, creating the folder (and its parents) when
  /// nothing exists at its path; a failure to create it is ignored. Nothing
  /// when `name` is not a single file name or there is no folder.
  static std::optional<std::filesystem::path> locationOf(std::string_view name);
};

/// `length` characters drawn uniformly from a-z, A-Z and 0-9.
std::string randomFileName(std::size_t length);

/// Moves `from` to `to` unless something exists at `to` already (nothing is
/// ever replaced). On failure, the error's localized description says why.
std::optional<PlatformError> moveWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace vantu
