#include "vantu/pickers/file_base64.h"

#include <cstdio>
#include <memory>
#include <span>
#include <vector>

#include "vantu/value/base64.h"

namespace vantu::pickers {
namespace {

// A multiple of 3, so that whole chunks leave nothing waiting in the encoder.
constexpr std::size_t kChunkBytes = 3 * 64 * 1024;

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

}  // namespace

FileBase64 readFileAsBase64(const std::filesystem::path& path, std::uint64_t maxBytes) {
  FileBase64 result;
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) return result;
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) return result;
  const auto expected = std::filesystem::file_size(path, error);
  if (!error && expected > maxBytes) {
    result.status = FileBase64::Status::tooLarge;
    return result;
  }
  if (!error) result.text.reserve(base64::encodedLength(expected));

  std::vector<std::uint8_t> chunk(kChunkBytes);
  base64::StreamingEncoder encoder(result.text);
  std::uint64_t total = 0;
  while (true) {
    const std::size_t got = std::fread(chunk.data(), 1, chunk.size(), file.get());
    total += got;
    if (total > maxBytes) {
      result.text = {};
      result.status = FileBase64::Status::tooLarge;
      return result;
    }
    encoder.append(std::span(chunk.data(), got));
    if (got < chunk.size()) break;
  }
  if (std::ferror(file.get())) {
    result.text = {};
    return result;
  }
  encoder.finish();
  result.status = FileBase64::Status::ok;
  return result;
}

}  // namespace vantu::pickers
