#pragma once
// A file's content as Base64 text, read in chunks and encoded straight
// into one string sized for the whole text: the file's bytes are never
// held in memory at once.

#include <cstdint>
#include <filesystem>
#include <string>

namespace vantu::pickers {

struct FileBase64 {
  enum class Status { ok, unreadable, tooLarge };
  Status status = Status::unreadable;
  std::string text;  // the Base64 text when ok
};

/// Reads the file at `path`; a file holding more than `maxBytes` bytes
/// gives `tooLarge` (checked before reading and while reading, for a file
/// that grows).
FileBase64 readFileAsBase64(const std::filesystem::path& path, std::uint64_t maxBytes);

}  // namespace vantu::pickers
