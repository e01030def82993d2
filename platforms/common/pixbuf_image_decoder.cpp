#include "platforms/common/pixbuf_image_decoder.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

namespace vantu {
namespace {

/// The gdk-pixbuf loader that reads the format `bytes` start with, or
/// nothing for a format the decoder does not read.
const char* loaderFor(std::span<const std::uint8_t> bytes) {
  auto startsWith = [&](std::initializer_list<std::uint8_t> magic) {
    return bytes.size() >= magic.size() && std::equal(magic.begin(), magic.end(), bytes.begin());
  };
  if (startsWith({0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'})) return "png";
  if (startsWith({0xFF, 0xD8, 0xFF})) return "jpeg";
  if (startsWith({'G', 'I', 'F', '8'})) return "gif";
  if (startsWith({'B', 'M'})) return "bmp";
  return nullptr;
}

struct ObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using Loader = std::unique_ptr<GdkPixbufLoader, ObjectUnref>;

/// Whether a JPEG holds its end-of-image marker after its first scan. The
/// JPEG loader decodes a file that stops inside its scans as if the rest
/// were blank, so a file cut short gives a picture with grey or smeared
/// rows; without the marker the file is known to be cut. (Inside a scan an
/// 0xFF byte is always followed by 0x00 or a restart marker, so the two bytes
/// cannot appear there by chance; bytes after the marker do not matter.)
bool jpegReachesItsEnd(std::span<const std::uint8_t> bytes) {
  const std::uint8_t startOfScan[] = {0xFF, 0xDA}, endOfImage[] = {0xFF, 0xD9};
  auto scan = std::search(bytes.begin(), bytes.end(), std::begin(startOfScan), std::end(startOfScan));
  return std::search(scan, bytes.end(), std::begin(endOfImage), std::end(endOfImage)) != bytes.end();
}

/// What the loader told while it read.
struct Progress {
  bool tooLarge = false;
  /// Which rows of pixels the loader wrote.
  std::vector<bool> rowsWritten;
};

/// Called once the loader knows the picture's size, before it takes any
/// memory for the pixels: a size of 0 x 0 makes every loader stop there.
void checkSize(GdkPixbufLoader* loader, int width, int height, gpointer data) {
  auto* progress = static_cast<Progress*>(data);
  if (isDecodableImageSize(width, height)) {
    progress->rowsWritten.assign(static_cast<std::size_t>(height), false);
    return;
  }
  progress->tooLarge = true;
  // (A side of 0 or less already stops it.)
  if (width > 0 && height > 0) gdk_pixbuf_loader_set_size(loader, 0, 0);
}

void noteRows(GdkPixbufLoader*, int, int y, int, int height, gpointer data) {
  auto& rows = static_cast<Progress*>(data)->rowsWritten;
  const auto from = static_cast<std::size_t>(std::max(y, 0));
  const auto to = std::min(rows.size(), static_cast<std::size_t>(std::max(y + height, 0)));
  for (std::size_t row = from; row < to; ++row) rows[row] = true;
}

/// Whether every row of the picture was written. The PNG, JPEG and BMP
/// loaders hand out a picture whose missing rows are whatever the memory
/// held (a file cut short, or a header promising more rows than the data
/// holds), so such a picture is refused. The GIF loader composes its first
/// frame on a cleared canvas, where rows outside the frame are transparent.
bool isWhole(const char* type, const Progress& progress) {
  if (std::string_view(type) == "gif") return true;
  return std::all_of(progress.rowsWritten.begin(), progress.rowsWritten.end(), [](bool row) { return row; });
}

/// The pixbuf's pixels as 8-bit RGBA rows without padding.
std::optional<Image> imageOf(GdkPixbuf* pixbuf) {
  if (gdk_pixbuf_get_colorspace(pixbuf) != GDK_COLORSPACE_RGB || gdk_pixbuf_get_bits_per_sample(pixbuf) != 8) {
    return std::nullopt;
  }
  const int width = gdk_pixbuf_get_width(pixbuf);
  const int height = gdk_pixbuf_get_height(pixbuf);
  const int channels = gdk_pixbuf_get_n_channels(pixbuf);
  const bool alpha = gdk_pixbuf_get_has_alpha(pixbuf);
  if (!isDecodableImageSize(width, height) || channels != (alpha ? 4 : 3)) return std::nullopt;
  const int stride = gdk_pixbuf_get_rowstride(pixbuf);
  const guint8* pixels = gdk_pixbuf_read_pixels(pixbuf);

  Image image;
  image.size = Size{static_cast<double>(width), static_cast<double>(height)};
  image.bytes.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
  std::uint8_t* out = image.bytes.data();
  for (int y = 0; y < height; ++y) {
    const guint8* row = pixels + static_cast<std::ptrdiff_t>(y) * stride;
    if (alpha) {
      out = std::copy_n(row, std::size_t(width) * 4, out);
      continue;
    }
    for (int x = 0; x < width; ++x, row += 3) {
      *out++ = row[0], *out++ = row[1], *out++ = row[2], *out++ = 255;
    }
  }
  return image;
}

}  // namespace

std::optional<Image> PixbufImageDecoder::doDecode(std::span<const std::uint8_t> bytes) {
  const char* type = loaderFor(bytes);
  if (!type || (std::string_view(type) == "jpeg" && !jpegReachesItsEnd(bytes))) return std::nullopt;
  GError* error = nullptr;
  Loader loader(gdk_pixbuf_loader_new_with_type(type, &error));
  if (!loader) {
    g_clear_error(&error);
    return std::nullopt;
  }
  Progress progress;
  g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(checkSize), &progress);
  g_signal_connect(loader.get(), "area-updated", G_CALLBACK(noteRows), &progress);
  const bool written = gdk_pixbuf_loader_write(loader.get(), bytes.data(), bytes.size(), &error);
  g_clear_error(&error);
  // Closed even after a failed write: a loader must be closed before it goes.
  const bool closed = gdk_pixbuf_loader_close(loader.get(), &error);
  g_clear_error(&error);
  if (!written || !closed || progress.tooLarge || !isWhole(type, progress)) return std::nullopt;
  GdkPixbuf* pixbuf = gdk_pixbuf_loader_get_pixbuf(loader.get());  // owned by the loader
  if (!pixbuf) return std::nullopt;
  return imageOf(pixbuf);
}

}  // namespace vantu
