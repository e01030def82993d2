#pragma once
// The pictures that pages send, decoded by the platform's image decoder
// (vantu/platform/image_decoder.h): only PNG, JPEG, GIF and BMP within its
// limits come out.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

#include "vantu/platform/image_decoder.h"

namespace vantu {

/// The picture in `bytes` as the installed platform's decoder reads it;
/// nothing when the platform has no decoder.
std::optional<Image> decodeImage(std::span<const std::uint8_t> bytes);

/// The picture in the file at `path`, as `decodeImage` reads it; nothing
/// when the file cannot be read either.
std::optional<Image> decodeImageFile(const std::filesystem::path& path);

}  // namespace vantu
