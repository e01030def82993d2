// The image decoder: the four formats it reads, everything it refuses, and
// bad bytes of every kind, which must give nothing and never crash.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "tests/alert_share/test_images.h"
#include "vantu/core/image_decoder.h"
#include "vantu/value/base64.h"

namespace vantu::testing_support {
namespace {

testing::AssertionResult near(const Image& image, std::size_t pixel, Rgba want, int tolerance) {
  const std::size_t at = pixel * 4;
  if (at + 3 >= image.bytes.size()) return testing::AssertionFailure() << "no pixel " << pixel;
  const int got[4] = {image.bytes[at], image.bytes[at + 1], image.bytes[at + 2], image.bytes[at + 3]};
  const int expected[4] = {want.r, want.g, want.b, want.a};
  for (int i = 0; i < 4; ++i) {
    if (std::abs(got[i] - expected[i]) > tolerance) {
      return testing::AssertionFailure() << "pixel " << pixel << " is (" << got[0] << ", " << got[1] << ", " << got[2]
                                         << ", " << got[3] << ")";
    }
  }
  return testing::AssertionSuccess();
}

TEST(ImageDecoder, ReadsPngJpegGifAndBmp) {
  const Rgba red{255, 0, 0, 255}, green{0, 255, 0, 255}, blue{0, 0, 255, 255}, white{255, 255, 255, 255};
  struct Case {
    const char* name;
    Bytes8 file;
    int width, height;
    std::vector<Rgba> pixels;  // the first pixels, in order
    int tolerance;
  };
  const Case cases[] = {
      {"png 2x2", encodePng(2, 2, quadrantPixels()), 2, 2, {red, green, blue, white}, 0},
      {"png with alpha", encodePng(1, 1, solidPixels(1, 1, {10, 20, 30, 40})), 1, 1, {{10, 20, 30, 40}}, 0},
      // JPEG is lossy and has no alpha: solid blocks come back close.
      {"jpeg 8x8", encodeJpeg(8, 8, solidPixels(8, 8, red)), 8, 8, {red, red}, 8},
      {"gif 2x1", tinyGif(), 2, 1, {red, blue}, 0},
      {"bmp 2x2", encodeBmp(2, 2, quadrantPixels()), 2, 2, {red, green, blue, white}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto image = decodeImage(c.file);
    ASSERT_TRUE(image.has_value());
    EXPECT_EQ(image->size, (Size{static_cast<double>(c.width), static_cast<double>(c.height)}));
    EXPECT_EQ(image->bytes.size(), static_cast<std::size_t>(c.width * c.height * 4));
    EXPECT_TRUE(image->name.empty());
    for (std::size_t i = 0; i < c.pixels.size(); ++i) EXPECT_TRUE(near(*image, i, c.pixels[i], c.tolerance));
  }
}

TEST(ImageDecoder, RefusesOtherFormatsAndNonImages) {
  const Bytes8 pixels = solidPixels(2, 2, {1, 2, 3, 255});
  const std::string ppm = "P6\n1 1\n255\n\x01\x02\x03";
  const std::string text = "hello, this is not a picture";
  struct Case {
    const char* name;
    Bytes8 bytes;
  };
  const Case cases[] = {
      {"empty", {}},
      {"tga", encodeTga(2, 2, pixels)},
      {"hdr", encodeHdr(2, 2)},
      {"ppm", Bytes8(ppm.begin(), ppm.end())},
      {"text", Bytes8(text.begin(), text.end())},
      {"png signature only", Bytes8{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'}},
      {"jpeg markers only", Bytes8{0xFF, 0xD8, 0xFF, 0xD9}},
      {"gif header only", Bytes8{'G', 'I', 'F', '8', '9', 'a'}},
      {"bmp magic only", Bytes8{'B', 'M'}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_FALSE(decodeImage(c.bytes).has_value());
  }
}

TEST(ImageDecoder, TruncatedFilesGiveNothing) {
  // Every cut of a real file before its pixel data is complete.
  const Bytes8 png = encodePng(4, 4, solidPixels(4, 4, {9, 8, 7, 255}));
  // The last 12 bytes are the IEND chunk: cut anywhere before them.
  for (std::size_t length = 0; length < png.size() - 12; ++length) {
    SCOPED_TRACE("png cut to " + std::to_string(length));
    EXPECT_FALSE(decodeImage(std::span(png).first(length)).has_value());
  }
  // A GIF cut before its first image gives nothing; one cut inside it is
  // read leniently, the missing pixels blank, as browsers show it.
  const Bytes8 gif = tinyGif();
  constexpr std::size_t kFirstImage = 19;  // header, screen descriptor, colour table
  for (std::size_t length = 0; length < gif.size(); ++length) {
    SCOPED_TRACE("gif cut to " + std::to_string(length));
    auto image = decodeImage(std::span(gif).first(length));
    if (length <= kFirstImage) {
      EXPECT_FALSE(image.has_value());
    } else if (image) {
      EXPECT_EQ(image->size, (Size{2, 1}));
    }
  }
  const Bytes8 bmp = encodeBmp(3, 2, solidPixels(3, 2, {200, 10, 10, 255}));
  const Bytes8 jpeg = encodeJpeg(8, 8, solidPixels(8, 8, {200, 10, 10, 255}));
  for (std::size_t length = 0; length < bmp.size() || length < 160; ++length) {
    SCOPED_TRACE("bmp / jpeg cut to " + std::to_string(length));
    if (length < bmp.size()) EXPECT_FALSE(decodeImage(std::span(bmp).first(length)).has_value());
    if (length < 160 && length < jpeg.size()) EXPECT_FALSE(decodeImage(std::span(jpeg).first(length)).has_value());
  }
}

TEST(ImageDecoder, PicturesBeyondTheLimitsAreRefusedFromTheirHeader) {
  // The files are tiny; only their headers claim the size.
  EXPECT_TRUE(decodeImage(pngClaiming(1, 1)).has_value());
  EXPECT_FALSE(decodeImage(pngClaiming(kMaxDecodedImageSide + 1, 1)).has_value());
  EXPECT_FALSE(decodeImage(pngClaiming(1, kMaxDecodedImageSide + 1)).has_value());
  EXPECT_FALSE(decodeImage(pngClaiming(0x7FFFFFFF, 0x7FFFFFFF)).has_value());
  EXPECT_FALSE(decodeImage(pngClaiming(0, 1)).has_value());
  EXPECT_FALSE(decodeImage(bmpClaiming(10000, 10000)).has_value());
  EXPECT_FALSE(decodeImage(bmpClaiming(-16384, 16384)).has_value());
  // Within the limits but without the pixels it promises: still nothing.
  EXPECT_FALSE(decodeImage(pngClaiming(4000, 4000)).has_value());
  EXPECT_FALSE(decodeImage(bmpClaiming(2, 3)).has_value());  // 16 bytes of pixels for 24
  EXPECT_TRUE(decodeImage(bmpClaiming(2, 2)).has_value());   // exactly its 16 bytes
  // A GIF holds at most 16384 pixels per byte of file.
  Bytes8 gif = tinyGif();
  gif[6] = 0x00, gif[7] = 0x20, gif[8] = 0x00, gif[9] = 0x10;  // a 8192 x 4096 screen in 35 bytes
  EXPECT_FALSE(decodeImage(gif).has_value());
  gif = tinyGif();
  gif[6] = 0x10, gif[7] = 0x00, gif[8] = 0x10, gif[9] = 0x00;  // 16 x 16: plausible, read leniently
  auto lenient = decodeImage(gif);
  ASSERT_TRUE(lenient.has_value());
  EXPECT_EQ(lenient->size, (Size{16, 16}));
}

TEST(ImageDecoder, JpegHuffmanTablesWithTooManyCodesAreRefused) {
  // A table header may claim up to 16 x 255 codes; a table holds 256.
  const Bytes8 jpeg = encodeJpeg(8, 8, solidPixels(8, 8, {90, 90, 90, 255}));
  ASSERT_TRUE(decodeImage(jpeg).has_value());
  for (int codes : {257, 510, 4080}) {
    SCOPED_TRACE(std::to_string(codes) + " codes");
    for (int table : {0x00, 0x13}) {  // a DC table 0, an AC table 3
      Bytes8 dht{0xFF, 0xC4, 0x00, 0x13, static_cast<std::uint8_t>(table)};
      int left = codes;
      for (int i = 0; i < 16; ++i) {
        const int count = std::min(left, 255);
        dht.push_back(static_cast<std::uint8_t>(count));
        left -= count;
      }
      // Before the frame, right after the start of image...
      Bytes8 early = jpeg;
      early.insert(early.begin() + 2, dht.begin(), dht.end());
      EXPECT_FALSE(decodeImage(early).has_value());
      // ...and between the frame and the scan.
      Bytes8 late = jpeg;
      const std::uint8_t startOfScan[] = {0xFF, 0xDA};
      const auto sos = std::search(late.begin(), late.end(), std::begin(startOfScan), std::end(startOfScan));
      ASSERT_NE(sos, late.end());
      late.insert(sos, dht.begin(), dht.end());
      EXPECT_FALSE(decodeImage(late).has_value());
    }
  }
}

TEST(ImageDecoder, PngChunksMustFitTheFile) {
  Bytes8 png = encodePng(2, 2, quadrantPixels());
  ASSERT_TRUE(decodeImage(png).has_value());
  // The IDAT chunk (right after the 33 bytes of signature and IHDR) claims
  // 2 GB: refused before any memory is reserved for it.
  Bytes8 huge = png;
  huge[33] = 0x7F, huge[34] = 0xFF, huge[35] = 0xFF, huge[36] = 0xF0;
  EXPECT_FALSE(decodeImage(huge).has_value());
  // An empty first IDAT chunk.
  Bytes8 empty{png.begin(), png.begin() + 33};
  const Bytes8 emptyIdat{0, 0, 0, 0, 'I', 'D', 'A', 'T', 0x35, 0xAF, 0x06, 0x1E};
  empty.insert(empty.end(), emptyIdat.begin(), emptyIdat.end());
  empty.insert(empty.end(), png.begin() + 33, png.end());
  EXPECT_FALSE(decodeImage(empty).has_value());
}

TEST(ImageDecoder, AScanNamingAnUndefinedHuffmanTableDecodesFromZeroedTables) {
  // stb_image uses an undefined table's memory as it finds it (fuzzing
  // found reads far out of bounds that way). The decoder hands it zeroed
  // memory, so such a table decodes as empty data, the same on every run.
  Bytes8 jpeg = encodeJpeg(16, 8, solidPixels(16, 8, {30, 60, 90, 255}));
  const std::uint8_t startOfScan[] = {0xFF, 0xDA};
  auto sos = std::search(jpeg.begin(), jpeg.end(), std::begin(startOfScan), std::end(startOfScan));
  ASSERT_LT(sos + 6, jpeg.end());
  for (std::uint8_t tables : {0x02, 0x30, 0x33}) {
    SCOPED_TRACE(static_cast<int>(tables));
    Bytes8 bytes = jpeg;
    bytes[static_cast<std::size_t>(sos - jpeg.begin()) + 6] = tables;  // the first component's DC / AC tables
    auto image = decodeImage(bytes);
    ASSERT_TRUE(image.has_value());
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
  const Bytes8 seeds[] = {
      encodePng(2, 2, quadrantPixels()),
      encodeJpeg(16, 16, solidPixels(16, 16, {120, 30, 200, 255}), 50),
      tinyGif(),
      encodeBmp(3, 3, solidPixels(3, 3, {5, 6, 7, 255})),
  };
  for (const Bytes8& seed : seeds) {
    for (int round = 0; round < 2000; ++round) {
      Bytes8 bytes = seed;
      const int edits = 1 + static_cast<int>(random() % 8);
      for (int e = 0; e < edits && !bytes.empty(); ++e) {
        const std::size_t at = random() % bytes.size();
        switch (random() % 4) {
          case 0: bytes[at] = static_cast<std::uint8_t>(random()); break;
          case 1: bytes[at] ^= static_cast<std::uint8_t>(1u << (random() % 8)); break;
          case 2: bytes.resize(at); break;
          default: bytes[at] = static_cast<std::uint8_t>(random() % 2 ? 0xFF : 0x00); break;
        }
      }
      if (auto image = decodeImage(bytes)) {
        ASSERT_EQ(image->bytes.size(), static_cast<std::size_t>(image->size.width * image->size.height * 4));
        ASSERT_LE(image->size.width * image->size.height, static_cast<double>(kMaxDecodedImagePixels));
      }
    }
  }
}

}  // namespace
}  // namespace vantu::testing_support
