// libFuzzer target for the image decoder on gdk-pixbuf: any input must
// decode or give nothing, never crash, and a picture that comes out must be
// within the limits and have all its pixels.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "platforms/common/pixbuf_image_decoder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static vantu::PixbufImageDecoder decoder;
  auto image = decoder.decode(std::span<const std::uint8_t>(data, size));
  if (image) {
    const double pixels = image->size.width * image->size.height;
    if (image->size.width < 1 || image->size.height < 1 ||
        pixels > static_cast<double>(vantu::kMaxDecodedImagePixels) ||
        image->bytes.size() != static_cast<std::size_t>(pixels) * 4) {
      std::abort();
    }
  }
  return 0;
}
