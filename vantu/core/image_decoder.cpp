#include "vantu/core/image_decoder.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

// The one translation unit that compiles stb_image. Its functions are kept
// private to this file (STB_IMAGE_STATIC), so they never clash with another
// copy of stb_image in the host's process (Debian's libstb included).
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_GIF
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_NO_FAILURE_STRINGS
#define STBI_MAX_DIMENSIONS 16384
// Every buffer starts zeroed: stb_image 2.27 can leave parts of its work
// buffers unwritten on corrupt input (a Huffman table a scan names but no
// segment defined, a scan that stops early), and those bytes would end up
// in the picture. Zeroed, an undefined table decodes as nothing at all.
#define STBI_MALLOC(size) std::calloc(1, (size))
#define STBI_REALLOC(pointer, size) std::realloc((pointer), (size))
#define STBI_FREE(pointer) std::free(pointer)
#include <stb/stb_image.h>

namespace vantu {
namespace {

static_assert(STBI_MAX_DIMENSIONS == kMaxDecodedImageSide);

struct StbFree {
  void operator()(stbi_uc* pixels) const { stbi_image_free(pixels); }
};

std::uint32_t bigEndian32(const std::uint8_t* p) {
  return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}

/// For a PNG: every chunk up to IEND lies within the bytes, and the first
/// image-data chunk is not empty. stb_image would otherwise reserve memory
/// for whatever size a chunk claims before finding the data missing, and
/// hands a null buffer to memcpy for an empty first IDAT.
bool pngChunksAreSound(std::span<const std::uint8_t> bytes) {
  static constexpr std::uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  if (bytes.size() < 8 || !std::equal(std::begin(kSignature), std::end(kSignature), bytes.begin())) return true;
  constexpr std::uint32_t kIdat = 0x49444154, kIend = 0x49454E44;
  bool sawImageData = false;
  std::size_t pos = 8;
  while (bytes.size() - pos >= 8) {
    const std::uint32_t length = bigEndian32(&bytes[pos]);
    const std::uint32_t type = bigEndian32(&bytes[pos + 4]);
    if (length > bytes.size() - pos - 8) return false;
    if (type == kIend) return true;
    if (type == kIdat && !sawImageData) {
      if (length == 0) return false;
      sawImageData = true;
    }
    // The chunk's CRC must be there too, except IEND's (stb_image does not read it).
    if (bytes.size() - pos - 8 - length < 4) return false;
    pos += 8 + std::size_t{length} + 4;
  }
  return false;
}

std::uint32_t littleEndian32(const std::uint8_t* p) {
  return (std::uint32_t{p[3]} << 24) | (std::uint32_t{p[2]} << 16) | (std::uint32_t{p[1]} << 8) | p[0];
}

/// For a BMP: the file holds every row of pixels its header promises. The
/// BMPs stb_image reads are all uncompressed, so a shorter file is
/// truncated; stb_image would read the missing rows as zeros, which lets a
/// file of a hundred bytes keep it busy with millions of pixels.
bool bmpHasAllItsPixels(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < 2 || bytes[0] != 'B' || bytes[1] != 'M') return true;
  if (bytes.size() < 30) return false;
  const std::uint32_t offset = littleEndian32(&bytes[10]);
  const std::uint32_t headerSize = littleEndian32(&bytes[14]);
  std::int64_t width = 0, height = 0, bitsPerPixel = 0;
  if (headerSize == 12) {  // OS/2 core header
    width = bytes[18] | (bytes[19] << 8);
    height = bytes[20] | (bytes[21] << 8);
    bitsPerPixel = bytes[24] | (bytes[25] << 8);
  } else {
    width = static_cast<std::int32_t>(littleEndian32(&bytes[18]));
    height = static_cast<std::int32_t>(littleEndian32(&bytes[22]));
    bitsPerPixel = bytes[28] | (bytes[29] << 8);
  }
  if (width <= 0 || height == 0 || bitsPerPixel == 0) return true;  // stb_image refuses these itself
  if (height < 0) height = -height;                                 // rows stored top down
  if (width > kMaxDecodedImageSide || height > kMaxDecodedImageSide) return false;
  const std::int64_t rowBytes = (width * bitsPerPixel + 31) / 32 * 4;
  const std::int64_t pixelsStart = std::max<std::int64_t>(offset, std::int64_t{14} + headerSize);
  return static_cast<std::int64_t>(bytes.size()) - pixelsStart >= rowBytes * height;
}

/// For a GIF: the file is large enough to hold the picture its screen
/// descriptor claims. LZW turns one code of at least two bits into at most
/// 4096 pixels, so no GIF holds more than 16384 pixels per byte. stb_image
/// reads a GIF cut short as if the rest were blank, which would let a file
/// of twenty bytes claim (and cost) 32 megapixels.
bool gifIsLargeEnough(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < 6 || bytes[0] != 'G' || bytes[1] != 'I' || bytes[2] != 'F') return true;
  if (bytes.size() < 10) return false;
  const std::int64_t pixels = std::int64_t{bytes[6] | (bytes[7] << 8)} * (bytes[8] | (bytes[9] << 8));
  return pixels <= static_cast<std::int64_t>(bytes.size()) * 16384;
}

/// Reads bytes as stb_image does: zero past the end.
class Cursor {
 public:
  explicit Cursor(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
  bool atEnd() const { return pos_ >= bytes_.size(); }
  int get8() { return atEnd() ? 0 : bytes_[pos_++]; }
  int get16() {
    const int high = get8();
    return (high << 8) | get8();
  }
  void skip(std::int64_t n) {
    if (n > 0) pos_ = static_cast<std::size_t>(std::min<std::int64_t>(bytes_.size(), pos_ + n));
  }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t pos_ = 0;
};

/// For a JPEG: no Huffman table defines more than 256 codes. stb_image
/// 2.27 (Debian 12) fills its fixed 256-entry tables with as many codes as
/// a table header claims (up to 4080), which corrupts the decoder's state.
/// The walk follows the markers stb_image reads, in its order (segments
/// before the frame, then scans and the segments between them), and looks
/// at every table it would build. A file it cannot follow is left to
/// stb_image, which refuses it.
bool jpegHuffmanTablesAreSound(std::span<const std::uint8_t> bytes) {
  constexpr int kNone = 0xFF;
  Cursor in(bytes);
  int pending = kNone;
  auto marker = [&]() {
    if (pending != kNone) return std::exchange(pending, kNone);
    int x = in.get8();
    if (x != 0xFF) return kNone;
    while (x == 0xFF && !in.atEnd()) x = in.get8();
    return x;
  };
  enum class Segment { Read, Unsound, Stop };
  auto segment = [&](int m) {
    if (m == 0xC4) {  // DHT: one or more tables
      int left = in.get16() - 2;
      while (left > 0) {
        const int q = in.get8();
        if ((q >> 4) > 1 || (q & 15) > 3) return Segment::Stop;
        int codes = 0;
        for (int i = 0; i < 16; ++i) codes += in.get8();
        if (codes > 256) return Segment::Unsound;
        in.skip(codes);
        left -= 17 + codes;
      }
      return left == 0 ? Segment::Read : Segment::Stop;
    }
    if (m == 0xDB) {  // DQT
      int left = in.get16() - 2;
      while (left > 0) {
        const int q = in.get8();
        if ((q >> 4) > 1 || (q & 15) > 3) return Segment::Stop;
        const bool sixteen = (q >> 4) != 0;
        in.skip(sixteen ? 128 : 64);
        left -= sixteen ? 129 : 65;
      }
      return left == 0 ? Segment::Read : Segment::Stop;
    }
    if (m == 0xDD) {  // DRI
      if (in.get16() != 4) return Segment::Stop;
      in.get16();
      return Segment::Read;
    }
    if ((m >= 0xE0 && m <= 0xEF) || m == 0xFE) {  // APPn, COM
      const int length = in.get16();
      if (length < 2) return Segment::Stop;
      in.skip(length - 2);
      return Segment::Read;
    }
    return Segment::Stop;  // stb_image refuses any other marker here
  };
  auto isFrame = [](int m) { return m == 0xC0 || m == 0xC1 || m == 0xC2; };

  if (marker() != 0xD8) return true;  // not a JPEG
  int m = marker();
  while (!isFrame(m)) {
    const Segment read = segment(m);
    if (read != Segment::Read) return read != Segment::Unsound;
    m = marker();
    while (m == kNone) {
      if (in.atEnd()) return true;
      m = marker();
    }
  }
  in.skip(in.get16() - 2);  // the frame header
  for (m = marker(); m != 0xD9; m = marker()) {
    if (m == 0xDA) {  // SOS: its header, then entropy-coded data up to the next marker
      in.skip(in.get16() - 2);
      while (!in.atEnd()) {
        if (in.get8() != 0xFF) continue;
        int c = in.get8();
        while (c == 0xFF && !in.atEnd()) c = in.get8();
        if (c != 0 && !(c >= 0xD0 && c <= 0xD7)) {  // restart markers stay inside the scan
          pending = c;
          break;
        }
      }
    } else if (m == 0xDC) {  // DNL
      in.get16();
      in.get16();
    } else {
      const Segment read = segment(m);
      if (read != Segment::Read) return read != Segment::Unsound;
    }
  }
  return true;
}

}  // namespace

std::optional<Image> decodeImageFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  return decodeImage(bytes);
}

std::optional<Image> decodeImage(std::span<const std::uint8_t> bytes) {
  if (bytes.empty() || bytes.size() > static_cast<std::size_t>(INT_MAX)) return std::nullopt;
  // Guards against stb_image's own weaknesses, before it sees the bytes.
  if (!pngChunksAreSound(bytes) || !jpegHuffmanTablesAreSound(bytes) || !bmpHasAllItsPixels(bytes) ||
      !gifIsLargeEnough(bytes)) {
    return std::nullopt;
  }
  const auto* data = reinterpret_cast<const stbi_uc*>(bytes.data());
  const int length = static_cast<int>(bytes.size());

  // The header first: the format must be one of ours and the size within
  // the limits before any pixel memory is asked for.
  int width = 0, height = 0, channels = 0;
  if (!stbi_info_from_memory(data, length, &width, &height, &channels)) return std::nullopt;
  if (width <= 0 || height <= 0 || width > kMaxDecodedImageSide || height > kMaxDecodedImageSide ||
      std::int64_t{width} * height > kMaxDecodedImagePixels) {
    return std::nullopt;
  }

  int w = 0, h = 0;
  std::unique_ptr<stbi_uc, StbFree> pixels(stbi_load_from_memory(data, length, &w, &h, &channels, STBI_rgb_alpha));
  // The decoder reads the header again; it must agree with what was checked.
  if (!pixels || w != width || h != height) return std::nullopt;

  Image image;
  image.size = Size{static_cast<double>(w), static_cast<double>(h)};
  const std::size_t count = static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 4;
  image.bytes.assign(pixels.get(), pixels.get() + count);
  return image;
}

}  // namespace vantu
