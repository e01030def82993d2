// The image decoder: the four formats it reads, everything it refuses, and
// bad bytes of every kind, which must give nothing and never crash. The
// files are made at test time (stb_image_write, from Debian's libstb-dev).

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <gtest/gtest.h>
#include <stb/stb_image_write.h>

#include <algorithm>
#include <random>

#include "vantu/core/image_decoder.h"
#include "vantu/value/base64.h"

namespace vantu {
namespace {

using Bytes8 = std::vector<std::uint8_t>;

/// w x h pixels of one RGBA colour.
Bytes8 solidPixels(int w, int h, const Bytes8& rgba) {
  Bytes8 pixels;
  for (int i = 0; i < w * h; ++i) pixels.insert(pixels.end(), rgba.begin(), rgba.end());
  return pixels;
}
const Bytes8 kQuadrant{255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};  // red, green / blue, white

enum class Format { png, jpeg, bmp, tga };
/// `rgba` (w x h) as a file of `format`.
Bytes8 encode(Format format, int w, int h, const Bytes8& rgba) {
  Bytes8 out;
  auto append = [](void* context, void* data, int size) {
    auto* to = static_cast<Bytes8*>(context);
    to->insert(to->end(), static_cast<std::uint8_t*>(data), static_cast<std::uint8_t*>(data) + size);
  };
  switch (format) {
    case Format::png: stbi_write_png_to_func(append, &out, w, h, 4, rgba.data(), w * 4); break;
    case Format::jpeg: stbi_write_jpg_to_func(append, &out, w, h, 4, rgba.data(), 95); break;
    case Format::bmp: stbi_write_bmp_to_func(append, &out, w, h, 4, rgba.data()); break;
    case Format::tga: stbi_write_tga_to_func(append, &out, w, h, 4, rgba.data()); break;
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

/// A real 1 x 1 PNG whose IHDR claims w x h (stb_image does not check chunk CRCs).
Bytes8 pngClaiming(std::uint32_t w, std::uint32_t h) {
  Bytes8 file = encode(Format::png, 1, 1, solidPixels(1, 1, {1, 2, 3, 255}));
  for (int i = 0; i < 4; ++i) file[16 + i] = std::uint8_t(w >> (24 - 8 * i)), file[20 + i] = std::uint8_t(h >> (24 - 8 * i));
  return file;
}

/// Where a JPEG's start-of-scan marker is.
std::size_t startOfScan(const Bytes8& jpeg) {
  const std::uint8_t marker[] = {0xFF, 0xDA};
  return std::size_t(std::search(jpeg.begin(), jpeg.end(), std::begin(marker), std::end(marker)) - jpeg.begin());
}

TEST(ImageDecoder, ReadsPngJpegGifAndBmp) {
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

TEST(ImageDecoder, TruncatedFilesGiveNothing) {
  // Every cut before the pixel data is complete: a PNG's last 12 bytes are
  // its IEND chunk, and no JPEG cut to 160 bytes holds its pixels. A BMP
  // missing rows would be read with zeros; the decoder refuses it.
  const Bytes8 png = encode(Format::png, 4, 4, solidPixels(4, 4, {9, 8, 7, 255}));
  const Bytes8 bmp = encode(Format::bmp, 3, 2, solidPixels(3, 2, {200, 10, 10, 255}));
  const Bytes8 jpeg = encode(Format::jpeg, 8, 8, solidPixels(8, 8, {200, 10, 10, 255}));
  const std::pair<const Bytes8*, std::size_t> files[] = {
      {&png, png.size() - 12}, {&bmp, bmp.size()}, {&jpeg, std::min<std::size_t>(160, jpeg.size())}};
  for (const auto& [file, cuts] : files) {
    for (std::size_t length = 0; length < cuts; ++length) {
      EXPECT_FALSE(decodeImage(std::span(*file).first(length)).has_value()) << "cut to " << length;
    }
  }
  // A GIF cut before its first image gives nothing; one cut inside it is
  // read leniently, the missing pixels blank, as browsers show it.
  for (std::size_t length = 0; length < kGif.size(); ++length) {
    auto image = decodeImage(std::span(kGif).first(length));
    if (length <= 19) {  // header, screen descriptor, colour table
      EXPECT_FALSE(image.has_value()) << "gif cut to " << length;
    } else if (image) {
      EXPECT_EQ(image->size, (Size{2, 1})) << "gif cut to " << length;
    }
  }
}

TEST(ImageDecoder, OtherFormatsAndClaimsBeyondTheFileOrTheLimitsAreRefused) {
  // One file per guard; the files are tiny, their headers, chunks or tables claim the rest.
  const std::string text = "hello, this is not a picture";
  std::vector<std::pair<std::string, Bytes8>> refused = {
      {"tga", encode(Format::tga, 2, 2, kQuadrant)},
      {"text", Bytes8(text.begin(), text.end())},
      {"png too wide", pngClaiming(kMaxDecodedImageSide + 1, 1)},
      {"png 0 wide", pngClaiming(0, 1)},
      {"png within the limits without its pixels", pngClaiming(4000, 4000)},
  };
  // A GIF holds at most 16384 pixels per byte of file: not 8192 x 4096 in 35 bytes.
  Bytes8 gif = kGif;
  gif[6] = 0x00, gif[7] = 0x20, gif[8] = 0x00, gif[9] = 0x10;
  refused.emplace_back("gif 8192 x 4096", gif);
  // The IDAT chunk right after the 33 bytes of signature and IHDR claims
  // 2 GB (refused before any memory is reserved for it); an empty first IDAT.
  const Bytes8 png = encode(Format::png, 2, 2, kQuadrant);
  Bytes8 huge = png, empty = png;
  huge[33] = 0x7F, huge[34] = 0xFF, huge[35] = 0xFF, huge[36] = 0xF0;
  refused.emplace_back("png idat of 2 GB", huge);
  const Bytes8 emptyIdat{0, 0, 0, 0, 'I', 'D', 'A', 'T', 0x35, 0xAF, 0x06, 0x1E};
  empty.insert(empty.begin() + 33, emptyIdat.begin(), emptyIdat.end());
  refused.emplace_back("png empty idat", empty);
  // Huffman tables may claim up to 16 x 255 codes; one of 257 (DC table 0, then AC table 3)
  // right after the start of image, and between the frame and the scan.
  const Bytes8 jpeg = encode(Format::jpeg, 8, 8, solidPixels(8, 8, {90, 90, 90, 255}));
  ASSERT_LT(startOfScan(jpeg), jpeg.size());
  for (auto [at, table] : {std::pair{std::size_t{2}, 0x00}, {startOfScan(jpeg), 0x13}}) {
    Bytes8 bytes = jpeg, dht{0xFF, 0xC4, 0x00, 0x13, std::uint8_t(table), 255, 2};
    dht.insert(dht.end(), 14, 0);
    bytes.insert(bytes.begin() + std::ptrdiff_t(at), dht.begin(), dht.end());
    refused.emplace_back("jpeg with 257 codes at " + std::to_string(at), bytes);
  }
  for (const auto& [name, bytes] : refused) EXPECT_FALSE(decodeImage(bytes).has_value()) << name;
  // The same files keeping their promises decode.
  for (const Bytes8& bytes : {pngClaiming(1, 1), png, jpeg}) EXPECT_TRUE(decodeImage(bytes).has_value());
  gif[6] = 0x10, gif[7] = 0x00, gif[8] = 0x10, gif[9] = 0x00;  // 16 x 16: plausible, read leniently
  auto lenient = decodeImage(gif);
  ASSERT_TRUE(lenient.has_value());
  EXPECT_EQ(lenient->size, (Size{16, 16}));
}

TEST(ImageDecoder, AScanNamingAnUndefinedHuffmanTableDecodesFromZeroedTables) {
  // stb_image reads an undefined table's memory as it finds it (fuzzing
  // found reads far out of bounds that way); the decoder hands it zeroed
  // memory, so the same empty data comes out on every run.
  const Bytes8 jpeg = encode(Format::jpeg, 16, 8, solidPixels(16, 8, {30, 60, 90, 255}));
  ASSERT_LT(startOfScan(jpeg) + 6, jpeg.size());
  for (std::uint8_t tables : {0x02, 0x30}) {  // an undefined DC table, then an undefined AC table
    Bytes8 bytes = jpeg;
    bytes[startOfScan(jpeg) + 6] = tables;  // the first component's DC / AC tables
    auto image = decodeImage(bytes);
    ASSERT_TRUE(image.has_value()) << int(tables);
    EXPECT_EQ(image->size, (Size{16, 8}));
    EXPECT_EQ(decodeImage(bytes), image);
  }
}

TEST(ImageDecoder, InputsFoundByFuzzingGiveNothing) {
  // A JPEG whose bit reader runs below empty (stb_image then shifts by 32).
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

TEST(ImageDecoder, MangledFilesNeverCrash) {
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
