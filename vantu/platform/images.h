#pragma once
// Images the host application ships with, looked up by name (the reference
// platform's image-by-name lookup in the main bundle).

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/platform/geometry.h"

namespace vantu {

/// An image as the library hands it around: its name, its size in points
/// and its pixels, 8-bit RGBA row by row (width * height * 4 bytes).
struct Image {
  std::string name;
  Size size;
  std::vector<std::uint8_t> bytes;
  bool operator==(const Image&) const = default;
};

class ImageStore {
 public:
  virtual ~ImageStore() = default;

  /// The image called `name`, or nullptr when the application has none.
  std::shared_ptr<const Image> imageNamed(std::string_view name) const { return doImageNamed(name); }

 protected:
  virtual std::shared_ptr<const Image> doImageNamed(std::string_view name) const = 0;
};

}  // namespace vantu
