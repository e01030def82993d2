#include "vantu/net/download_folder.h"

#include <cerrno>
#include <random>
#include <utility>

#include "vantu/platform/platform.h"

namespace vantu {
namespace {

constexpr std::string_view kAlphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
constexpr std::size_t kMaxNameBytes = 255;

// The same domain and codes as the reference platform's file errors.
constexpr std::string_view kFileErrorDomain = "CocoaErrorDomain";
constexpr std::int64_t kFileWriteFileExists = 516;
constexpr std::int64_t kFileWriteUnknown = 512;

FileSystemError noFileSystem() { return FileSystemError{FileSystemError::Kind::other, 0, "the platform has no file system"}; }

/// The platform's file system and the documents directory it works beneath,
/// or nothing when the platform lacks either.
std::optional<std::pair<FileSystem*, std::filesystem::path>> filesBeneathDocuments() {
  const auto& fileSystem = platform().fileSystem;
  const auto& documents = platform().documentsDirectory;
  if (!fileSystem || documents.empty()) return std::nullopt;
  return std::pair{fileSystem.get(), documents};
}

/// `name` inside the folder, relative to the documents directory.
std::filesystem::path beneathDocuments(std::string_view name) {
  return std::filesystem::path(std::string(kDownloadFolderName)) / std::string(name);
}

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
  auto files = filesBeneathDocuments();
  if (!folder || !files) return std::nullopt;
  const auto [fileSystem, documents] = *files;
  const FileEntryKind kind = fileSystem->entryKind(documents, std::string(kDownloadFolderName));
  if (kind == FileEntryKind::symbolicLink) return std::nullopt;
  if (kind == FileEntryKind::missing) {
    std::error_code ignored;
    std::filesystem::create_directories(*folder, ignored);
  }
  return *folder / std::filesystem::path(std::string(name));
}

FileEntryKind DownloadFolder::kindOf(std::string_view name) {
  auto files = filesBeneathDocuments();
  if (!isSingleFileName(name) || !files) return FileEntryKind::missing;
  return files->first->entryKind(files->second, beneathDocuments(name));
}

Result<Bytes, FileSystemError> DownloadFolder::read(std::string_view name, std::uint64_t maxBytes) {
  auto files = filesBeneathDocuments();
  if (!files) return noFileSystem();
  if (!isSingleFileName(name)) return FileSystemError{FileSystemError::Kind::other, ENOENT, "No such file or directory"};
  return files->first->readRegularFile(files->second, beneathDocuments(name), maxBytes);
}

std::optional<FileSystemError> DownloadFolder::remove(std::string_view name) {
  auto files = filesBeneathDocuments();
  if (!files) return noFileSystem();
  if (!isSingleFileName(name)) return FileSystemError{FileSystemError::Kind::other, ENOENT, "No such file or directory"};
  return files->first->removeRegularFile(files->second, beneathDocuments(name));
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
  std::optional<FileSystemError> failure = fileSystem ? fileSystem->moveWithoutReplacing(from, to) : noFileSystem();
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
