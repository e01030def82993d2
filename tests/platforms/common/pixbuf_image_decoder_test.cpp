// The image decoder on gdk-pixbuf: the four formats it reads, pixel for
// pixel as the decoder it replaced (stb_image, compiled into this test only
// as the reference), everything it refuses, and bad bytes of every kind,
// which must give nothing and never crash. The files are made at test time
// (stb_image_write, from Debian's libstb-dev).

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_GIF
#define STBI_ONLY_BMP
#include <gtest/gtest.h>
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "platforms/common/pixbuf_image_decoder.h"
#include "vantu/value/base64.h"

namespace vantu {
namespace {

using Bytes8 = std::vector<std::uint8_t>;

std::optional<Image> decodeImage(std::span<const std::uint8_t> bytes) { return PixbufImageDecoder().decode(bytes); }

/// w x h pixels of one RGBA colour.
Bytes8 solidPixels(int w, int h, const Bytes8& rgba) {
  Bytes8 pixels;
  for (int i = 0; i < w * h; ++i) pixels.insert(pixels.end(), rgba.begin(), rgba.end());
  return pixels;
}
const Bytes8 kQuadrant{255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};  // red, green / blue, white

/// w x h pixels of `channels` channels whose values vary smoothly, with a
/// few sharp edges.
Bytes8 gradientPixels(int w, int h, int channels) {
  Bytes8 pixels;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      for (int c = 0; c < channels; ++c) {
        const int edge = (x / 5 + y / 3) % 2 ? 60 : 0;
        pixels.push_back(std::uint8_t((x * 255 / std::max(1, w - 1) + y * 37 + c * 80 + edge) % 256));
      }
    }
  }
  return pixels;
}

enum class Format { png, jpeg, bmp, tga };
/// `pixels` (w x h, `channels` channels) as a file of `format`.
Bytes8 encode(Format format, int w, int h, const Bytes8& pixels, int channels = 4) {
  Bytes8 out;
  auto append = [](void* context, void* data, int size) {
    auto* to = static_cast<Bytes8*>(context);
    to->insert(to->end(), static_cast<std::uint8_t*>(data), static_cast<std::uint8_t*>(data) + size);
  };
  switch (format) {
    case Format::png: stbi_write_png_to_func(append, &out, w, h, channels, pixels.data(), w * channels); break;
    case Format::jpeg: stbi_write_jpg_to_func(append, &out, w, h, channels, pixels.data(), 95); break;
    case Format::bmp: stbi_write_bmp_to_func(append, &out, w, h, channels, pixels.data()); break;
    case Format::tga: stbi_write_tga_to_func(append, &out, w, h, channels, pixels.data()); break;
  }
  return out;
}

// A 2 x 1 GIF89a written byte by byte: a red pixel then a blue one.
const Bytes8 kGif{
    'G', 'I', 'F', '8', '9', 'a', 0x02, 0x00, 0x01, 0x00,  // header, screen 2 x 1
    0x80, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00, 0x00, 0xFF,  // a global table of 2 colours: red, blue
    0x2C, 0x00, 0x00, 0x00, 0x00, 0x02, 0x00, 0x01, 0x00, 0x00,  // a 2 x 1 image at (0, 0), no local table
    0x02, 0x02, 0x44, 0x0A, 0x00, 0x3B,  // LZW size 2; codes clear, 0, 1, end; end of data; trailer
};

/// kGif with its screen (and its image) claiming w x h.
Bytes8 gifClaiming(std::uint16_t w, std::uint16_t h) {
  Bytes8 gif = kGif;
  gif[6] = std::uint8_t(w), gif[7] = std::uint8_t(w >> 8), gif[8] = std::uint8_t(h), gif[9] = std::uint8_t(h >> 8);
  gif[24] = gif[6], gif[25] = gif[7], gif[26] = gif[8], gif[27] = gif[9];
  return gif;
}

std::uint32_t crc32(const std::uint8_t* data, std::size_t size) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (std::size_t i = 0; i < size; ++i) {
    crc ^= data[i];
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

/// A real 1 x 1 PNG whose IHDR (with a matching CRC) claims w x h.
Bytes8 pngClaiming(std::uint32_t w, std::uint32_t h) {
  Bytes8 file = encode(Format::png, 1, 1, solidPixels(1, 1, {1, 2, 3, 255}));
  for (int i = 0; i < 4; ++i) file[16 + i] = std::uint8_t(w >> (24 - 8 * i)), file[20 + i] = std::uint8_t(h >> (24 - 8 * i));
  const std::uint32_t crc = crc32(&file[12], 17);  // "IHDR" and its 13 bytes
  for (int i = 0; i < 4; ++i) file[29 + i] = std::uint8_t(crc >> (24 - 8 * i));
  return file;
}

/// Where a JPEG's start-of-scan marker is.
std::size_t startOfScan(const Bytes8& jpeg) {
  const std::uint8_t marker[] = {0xFF, 0xDA};
  return std::size_t(std::search(jpeg.begin(), jpeg.end(), std::begin(marker), std::end(marker)) - jpeg.begin());
}

TEST(PixbufImageDecoder, ReadsPngJpegGifAndBmp) {
  const Bytes8 red{255, 0, 0, 255};
  // The name, the file, its size, its first pixels' bytes and how far they may be off.
  const std::tuple<const char*, Bytes8, Size, Bytes8, int> cases[] = {
      {"png 2x2", encode(Format::png, 2, 2, kQuadrant), {2, 2}, kQuadrant, 0},
      {"png with alpha", encode(Format::png, 1, 1, solidPixels(1, 1, {10, 20, 30, 40})), {1, 1}, {10, 20, 30, 40}, 0},
      // JPEG is lossy and has no alpha: solid blocks come back close.
      {"jpeg 8x8", encode(Format::jpeg, 8, 8, solidPixels(8, 8, red)), {8, 8}, solidPixels(2, 1, red), 8},
      {"gif 2x1", kGif, {2, 1}, {255, 0, 0, 255, 0, 0, 255, 255}, 0},
      {"bmp 2x2", encode(Format::bmp, 2, 2, kQuadrant), {2, 2}, kQuadrant, 0},
  };
  for (const auto& [name, file, size, first, tolerance] : cases) {
    SCOPED_TRACE(name);
    auto image = decodeImage(file);
    ASSERT_TRUE(image.has_value());
    EXPECT_EQ(image->size, size);
    ASSERT_EQ(image->bytes.size(), std::size_t(size.width * size.height * 4));
    EXPECT_TRUE(image->name.empty());
    for (std::size_t i = 0; i < first.size(); ++i) EXPECT_NEAR(image->bytes[i], first[i], tolerance) << "byte " << i;
  }
}

TEST(PixbufImageDecoder, GivesThePixelsTheEarlierDecoderGave) {
  // Lossless formats: every byte equal. JPEG: libjpeg-turbo and stb_image
  // round the inverse transform and the colour conversion differently, so
  // a byte may be off by a little, never by a visible amount.
  constexpr int kJpegTolerance = 4;
  const std::tuple<const char*, Bytes8, int> cases[] = {
      {"png rgba", encode(Format::png, 13, 7, gradientPixels(13, 7, 4)), 0},
      {"png rgb", encode(Format::png, 13, 7, gradientPixels(13, 7, 3), 3), 0},
      {"png grey", encode(Format::png, 9, 4, gradientPixels(9, 4, 1), 1), 0},
      {"png grey with alpha", encode(Format::png, 9, 4, gradientPixels(9, 4, 2), 2), 0},
      {"bmp 24 bits", encode(Format::bmp, 11, 5, gradientPixels(11, 5, 3), 3), 0},
      {"bmp 32 bits", encode(Format::bmp, 11, 5, gradientPixels(11, 5, 4), 4), 0},
      {"gif", kGif, 0},
      {"jpeg colour", encode(Format::jpeg, 24, 16, gradientPixels(24, 16, 3), 3), kJpegTolerance},
      {"jpeg grey", encode(Format::jpeg, 17, 9, gradientPixels(17, 9, 1), 1), kJpegTolerance},
  };
  for (const auto& [name, file, tolerance] : cases) {
    SCOPED_TRACE(name);
    int w = 0, h = 0, channels = 0;
    std::unique_ptr<stbi_uc, void (*)(void*)> reference(
        stbi_load_from_memory(file.data(), int(file.size()), &w, &h, &channels, STBI_rgb_alpha), stbi_image_free);
    ASSERT_TRUE(reference);
    auto image = decodeImage(file);
    ASSERT_TRUE(image.has_value());
    ASSERT_EQ(image->size, (Size{double(w), double(h)}));
    int worst = 0;
    for (std::size_t i = 0; i < image->bytes.size(); ++i) worst = std::max(worst, std::abs(image->bytes[i] - reference.get()[i]));
    EXPECT_LE(worst, tolerance);
  }
}

TEST(PixbufImageDecoder, ACutFileGivesNothingOrItsWholePicture) {
  // Cut anywhere, a file gives nothing, or (cut after its last pixel, in
  // its end marker or trailer) exactly the picture of the whole file:
  // never a picture with rows the file did not hold.
  const Bytes8 files[] = {encode(Format::png, 4, 4, gradientPixels(4, 4, 4)),
                          encode(Format::bmp, 3, 2, gradientPixels(3, 2, 4)),
                          encode(Format::jpeg, 8, 8, gradientPixels(8, 8, 4)), kGif};
  for (const Bytes8& file : files) {
    const auto whole = decodeImage(file);
    ASSERT_TRUE(whole.has_value());
    std::size_t firstDecoded = file.size();
    for (std::size_t length = 0; length < file.size(); ++length) {
      SCOPED_TRACE("cut to " + std::to_string(length) + " of " + std::to_string(file.size()));
      auto image = decodeImage(std::span(file).first(length));
      if (!image) continue;
      EXPECT_EQ(image, whole);
      firstDecoded = std::min(firstDecoded, length);
    }
    // Only the last few bytes (end markers and checksums) may go missing.
    EXPECT_GE(firstDecoded + 24, file.size());
  }
}

TEST(PixbufImageDecoder, OtherFormatsCorruptFilesAndSizesBeyondTheLimitsAreRefused) {
  const std::string text = "hello, this is not a picture";
  std::vector<std::pair<std::string, Bytes8>> refused = {
      {"tga", encode(Format::tga, 2, 2, kQuadrant)},
      {"text", Bytes8(text.begin(), text.end())},
      {"png too wide", pngClaiming(kMaxDecodedImageSide + 1, 1)},
      {"png beyond the pixel count", pngClaiming(8192, 4097)},
      {"png 0 wide", pngClaiming(0, 1)},
      {"png within the limits without its pixels", pngClaiming(4000, 4000)},
      // Without the size check before the pixels, this one would cost 17 GB.
      {"gif 65535 x 65535", gifClaiming(65535, 65535)},
      {"gif too tall", gifClaiming(1, kMaxDecodedImageSide + 1)},
  };
  // Corrupt tables: a JPEG Huffman table of 257 codes (right after the
  // start of image, and between the frame and the scan), and a scan naming
  // Huffman tables that were never defined.
  const Bytes8 png = encode(Format::png, 2, 2, kQuadrant);
  const Bytes8 jpeg = encode(Format::jpeg, 16, 8, solidPixels(16, 8, {90, 90, 90, 255}));
  ASSERT_LT(startOfScan(jpeg) + 6, jpeg.size());
  for (auto [at, table] : {std::pair{std::size_t{2}, 0x00}, {startOfScan(jpeg), 0x13}}) {
    Bytes8 bytes = jpeg, dht{0xFF, 0xC4, 0x00, 0x13, std::uint8_t(table), 255, 2};
    dht.insert(dht.end(), 14, 0);
    bytes.insert(bytes.begin() + std::ptrdiff_t(at), dht.begin(), dht.end());
    refused.emplace_back("jpeg with 257 codes at " + std::to_string(at), bytes);
  }
  for (std::uint8_t tables : {0x02, 0x30}) {  // an undefined DC table, then an undefined AC table
    Bytes8 bytes = jpeg;
    bytes[startOfScan(jpeg) + 6] = tables;  // the first component's DC / AC tables
    refused.emplace_back("jpeg naming table " + std::to_string(tables), bytes);
  }
  for (const auto& [name, bytes] : refused) EXPECT_FALSE(decodeImage(bytes).has_value()) << name;
  // The same files keeping their promises decode, up to the limits.
  for (const Bytes8& bytes : {pngClaiming(1, 1), png, jpeg}) EXPECT_TRUE(decodeImage(bytes).has_value());
  auto atTheLimit = decodeImage(gifClaiming(kMaxDecodedImageSide, 2));
  ASSERT_TRUE(atTheLimit.has_value());
  EXPECT_EQ(atTheLimit->size, (Size{double(kMaxDecodedImageSide), 2}));
}

TEST(PixbufImageDecoder, InputsFoundByFuzzingGiveNothing) {
  // A JPEG whose bit reader runs below empty.
  const std::string shiftedPastEmpty =
      "/9j/4AAQSkZJRgABAQAAAQABAAALCw0OEhANDhEOCwsQFhARExQVFRUMDxcYFhQYEhQVFAEDBAQFBAUJBQUJFA0LDRQUFBQU"
      "FBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQU/8AAEQgADAIQAwEiAAIRAQMRAf/EAaIAAAEF"
      "AQEBAQEBAAAAAAAAAAABAgMEBQYHCAkKCxAAAgEDAwIEAwUFBAQAAAF9AQIDAAQRBRIhMkEGE1FhByJxFDKBkaEII0KxwRVS"
      "0fAkM2JyggkKFhcYGRolJicoKSo0NTY3ODk6Q0RFRkdISUpTVFVWV1hZWmNkZWZnaGlqc3R1dnd4eXqDhIWGh4iJipKTlJWW"
      "l5iZmqKjpKWmp6ipqrKztLW2t7i5usLDxMXGx8jJytLT1NXW19jZ2uHi4+Tl5ufo6erx8vP09fb3+Pn6AQADAQEBAQEBAQEB"
      "AAAAAAAAAQIDBAUGBwgJCgsRAAIBAgQEAwQHBQQEAAECdwABAgMRBAUhMQYSQVEHYXETIjKBCBRCkaGxwQkjM1LwFWJy0QoW"
      "JDThJfEXGBkaJicoKSo1Njc4OTpDREVGR0hJSlNUVVZXWFlaY2RlZmdoaWpzdHV2d3h5eoKDhIWGh4iJipKTlJWWl5iZmqKj"
      "pKWmp6ipqrKztLW2t7i5usLDxMXGx8jJytLT1NXW19jZ2uLj5OXm5+jp6vLz9PX29/j5+v/aAAwDAQACEQMRAD8AoT6N4WiW"
      "yj1z4V2XhmWxha9e88OW8C2/kkHd5slrctHgbM/McqATwGOW2Nto1nbibwp46ls54VYrJqptLj5jEQnvH8+O7faEK/v0lWQY"
      "2qOGHAx04q6SlWwMMdD3qNSSjrqlJpyScP//////////ANj/4AACAf///////////wAAAAAAAAAAAAAAAAAAMQAAAAAAAAD/"
      "AAD/AAD/AAAACAAA/wAAAAAAAAAAAAAA2Q==";
  EXPECT_FALSE(decodeImage(base64::decodeIgnoringUnknown(shiftedPastEmpty)).has_value());
}

TEST(PixbufImageDecoder, MangledFilesNeverCrash) {
  // A fixed-seed mutation run over real files of each format (under the
  // sanitizers in the asan build): any outcome but a crash is fine, and a
  // picture that does come out has a consistent size.
  std::mt19937 random(20240613);
  const Bytes8 seeds[] = {encode(Format::png, 2, 2, kQuadrant),
                          encode(Format::jpeg, 16, 16, solidPixels(16, 16, {120, 30, 200, 255})), kGif,
                          encode(Format::bmp, 3, 3, solidPixels(3, 3, {5, 6, 7, 255}))};
  for (const Bytes8& seed : seeds) {
    for (int round = 0; round < 2000; ++round) {
      Bytes8 bytes = seed;
      const int edits = 1 + int(random() % 8);
      for (int e = 0; e < edits && !bytes.empty(); ++e) {
        const std::size_t at = random() % bytes.size();
        switch (random() % 4) {
          case 0: bytes[at] = std::uint8_t(random()); break;
          case 1: bytes[at] ^= std::uint8_t(1u << (random() % 8)); break;
          case 2: bytes.resize(at); break;
          default: bytes[at] = random() % 2 ? 0xFF : 0x00; break;
        }
      }
      if (auto image = decodeImage(bytes)) {
        ASSERT_EQ(image->bytes.size(), std::size_t(image->size.width * image->size.height * 4));
        ASSERT_LE(image->size.width * image->size.height, double(kMaxDecodedImagePixels));
      }
    }
  }
}

}  // namespace
}  // namespace vantu
