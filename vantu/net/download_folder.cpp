#include "vantu/net/download_folder.h"

#include <random>

#include "vantu/platform/platform.h"

namespace vantu {
namespace {

constexpr std::string_view kAlphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
constexpr std::size_t kMaxNameBytes = 255;

// The same domain and codes as the reference platform's file errors.
constexpr std::string_view kFileErrorDomain = "CocoaErrorDomain";
constexpr std::int64_t kFileWriteFileExists = 516;
constexpr std::int64_t kFileWriteUnknown = 512;

}  // namespace

bool isSingleFileName(std::string_view name) {
  return !name.empty() && name.size() <= kMaxNameBytes && name != "." && name != ".." &&
         name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

std::optional<std::filesystem::path> DownloadFolder::path() {
  const auto& documents = platform().documentsDirectory;
  if (documents.empty()) return std::nullopt;
  return documents / kDownloadFolderName;
}

std::optional<std::filesystem::path> DownloadFolder::locationOf(std::string_view name) {
  if (!isSingleFileName(name)) return std::nullopt;
  auto folder = path();
  if (!folder) return std::nullopt;
  std::error_code ignored;
  if (!std::filesystem::exists(std::filesystem::symlink_status(*folder, ignored))) {
    std::filesystem::create_directories(*folder, ignored);
  }
  return *folder / std::filesystem::path(std::string(name));
}

std::string randomFileName(std::size_t length) {
  thread_local std::mt19937_64 generator{std::random_device{}()};
  std::uniform_int_distribution<std::size_t> pick(0, kAlphabet.size() - 1);
  std::string name(length, ' ');
  for (char& c : name) c = kAlphabet[pick(generator)];
  return name;
}

std::optional<PlatformError> moveWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
  const auto& fileSystem = platform().fileSystem;
  std::optional<FileSystemError> failure =
      fileSystem ? fileSystem->moveWithoutReplacing(from, to)
                 : FileSystemError{FileSystemError::Kind::other, 0, "the platform has no file system"};
  if (!failure) return std::nullopt;
  const std::string name = to.filename().string();
  const std::string folder = to.parent_path().filename().string();
  const Dict userInfo{{"errno", static_cast<std::int64_t>(failure->code)}};
  if (failure->kind == FileSystemError::Kind::alreadyExists) {
    return PlatformError{std::string(kFileErrorDomain), kFileWriteFileExists,
                         "\u201c" + name + "\u201d couldn\u2019t be moved to \u201c" + folder +
                             "\u201d because an item with the same name already exists.",
                         std::nullopt, userInfo};
  }
  return PlatformError{std::string(kFileErrorDomain), kFileWriteUnknown,
                       "\u201c" + name + "\u201d couldn\u2019t be moved to \u201c" + folder + "\u201d: " +
                           failure->reason + ".",
                       std::nullopt, userInfo};
}

}  // namespace vantu
