#pragma once
// The private folder that downloads land in, "H5DOWNLOADS" under the
// platform's documents directory, and the naming rules of its files.
//
// Pages address files only by name. A name must be one path component (not
// empty, not "." or "..", no "/" and no NUL, at most 255 bytes); anything
// else is refused before any path is formed, so no file outside the folder
// is ever read, written or removed on a page's behalf. Below the platform's
// documents directory no symbolic link is followed: a link that another
// local process puts in place of the folder or of one of its files is a
// file the folder does not have.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/file_system.h"
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
  /// When a link stands where the folder should be, nothing.
  static std::optional<std::filesystem::path> locationOf(std::string_view name);

  /// What the folder holds under `name`, reached without following links
  /// (a link is `symbolicLink`, a link in place of the folder `missing`).
  static FileEntryKind kindOf(std::string_view name);
  /// The bytes of the regular file `name` (at most `maxBytes`).
  static Result<Bytes, FileSystemError> read(std::string_view name, std::uint64_t maxBytes);
  /// Removes the regular file `name`; a link or a folder stays.
  static std::optional<FileSystemError> remove(std::string_view name);
};

/// `length` characters drawn uniformly from a-z, A-Z and 0-9.
std::string randomFileName(std::size_t length);

/// Moves `from` to `to` unless something exists at `to` already (nothing is
/// ever replaced). On failure, the error's localized description says why.
std::optional<PlatformError> moveWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace vantu
