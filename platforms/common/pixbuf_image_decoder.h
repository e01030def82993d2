#pragma once
// The image decoder on gdk-pixbuf, whose PNG, JPEG, GIF and BMP loaders sit
// on libpng, libjpeg-turbo and gdk-pixbuf's own GIF and BMP readers, all
// maintained with security updates by the distribution.

#include "vantu/platform/image_decoder.h"

namespace vantu {

class PixbufImageDecoder : public ImageDecoder {
 protected:
  /// The format is told from the file's first bytes and only that format's
  /// loader is asked, so no other loader installed on the system (SVG, TIFF,
  /// ICO, ...) ever sees a page's bytes. A size beyond the limits stops the
  /// loader as soon as the header is read, before it takes pixel memory. Any
  /// error the loader reports gives nothing, and so does a picture some of
  /// whose rows the loader never wrote (a file cut short).
  std::optional<Image> doDecode(std::span<const std::uint8_t> bytes) override;
};

}  // namespace vantu
