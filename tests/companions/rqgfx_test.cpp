// rqgfx: images, copies of DIB sections, and PNG files, which another decoder reads.
#include <gtest/gtest.h>

#include <rqgfx/duct_image.h>
#include <rqgfx/png_writer.h>
#include <support/decoded_image.h>
#include <support/files.h>
#include <support/memory_shortage.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using Pixels = std::vector<std::uint32_t>;

Pixels pixels_of(const hnDuctImage& image) { return {image.row(0), image.row(0) + image.width() * image.height()}; }

// Noise, or a flat picture with a frame.
std::unique_ptr<hnDuctImage> make_image(int width, int height, bool has_alpha, bool flat) {
  auto image = std::make_unique<hnDuctImage>(width, height, has_alpha);
  std::uint32_t noise = 1;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      noise = noise * 1664525 + 1013904223;
      const std::uint32_t pixel = flat ? (x == 0 || y == 0 ? 0x40112233 : 0xFFD4D0C8) : noise;
      image->row(y)[x] = has_alpha ? pixel : pixel | 0xFF000000;
    }
  return image;
}

bool append(void* bytes, const unsigned char* data, unsigned __int64 count) {
  static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), static_cast<size_t>(count));
  return true;
}

// The depth and the colour type of the header.
std::pair<int, int> format_of(const std::string& png) { return {png.at(24), png.at(25)}; }
constexpr int with_alpha = 6, without_alpha = 2, indexed = 3;

std::string png_of(hnDuctImage* image, int bits) {
  std::string bytes;
  EXPECT_EQ(rqPNGWriterDuctImage::write_file(image, append, &bytes, 1, bits), 1);
  return bytes;
}

class Rqgfx : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

TEST_F(Rqgfx, AnImageBeginsEmpty) {
  hnDuctImage image(3, 2, true);
  EXPECT_EQ(image.width(), 3);
  EXPECT_EQ(image.height(), 2);
  EXPECT_TRUE(image.has_alpha());
  EXPECT_EQ(pixels_of(image), Pixels(6, 0));
  EXPECT_EQ(image.row(1), image.row(0) + 3);
  EXPECT_EQ(hnDuctImage(-3, 2, false).width(), 0);
}

TEST_F(Rqgfx, ASectionBecomesAnOpaqueImageWithTheTopRowFirst) {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), 2, 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits;
  HBITMAP section = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const Pixels rows{0x00000001, 0x80000002, 0x00000003, 0x00000004};
  std::copy(rows.begin(), rows.end(), static_cast<std::uint32_t*>(bits));
  std::unique_ptr<hnDuctImage> image(rq_duct_image_from_dib(section));
  ASSERT_TRUE(image);
  EXPECT_FALSE(image->has_alpha());
  EXPECT_EQ(pixels_of(*image), (Pixels{0xFF000003, 0xFF000004, 0xFF000001, 0xFF000002}));
  DeleteObject(section);
}

TEST_F(Rqgfx, WhatIsNoSectionOfThirtyTwoBitsBecomesNoImage) {
  EXPECT_EQ(rq_duct_image_from_dib(nullptr), nullptr);
  HBITMAP plain = CreateBitmap(2, 2, 1, 32, nullptr);
  EXPECT_EQ(rq_duct_image_from_dib(plain), nullptr);
  DeleteObject(plain);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), 2, 2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits;
  HBITMAP section = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  EXPECT_EQ(rq_duct_image_from_dib(section), nullptr);
  DeleteObject(section);
}

TEST_F(Rqgfx, EveryImageComesBackPixelByPixelWithEveryOption) {
  for (auto [width, height] : {std::pair{1, 1}, {1, 100}, {100, 1}, {31, 33}, {64, 64}})
    for (bool flat : {false, true})
      for (int filter : {-1, 0, 1, 2})
        for (int bits : {-1, 32}) {
          auto image = make_image(width, height, true, flat);
          ASSERT_EQ(rqPNGWriterDuctImage::write_file(image.get(), bzString("a.png"), filter, bits), 1);
          const DecodedImage decoded = decode_image("a.png");
          ASSERT_EQ(decoded.width, width);
          ASSERT_EQ(decoded.height, height);
          ASSERT_EQ(decoded.pixels, pixels_of(*image)) << flat << filter << bits;
        }
}

TEST_F(Rqgfx, TheBitsSayWhetherAlphaIsKept) {
  auto alpha = make_image(20, 20, true, false), opaque = make_image(20, 20, false, false);
  EXPECT_EQ(format_of(png_of(alpha.get(), -1)), std::pair(8, with_alpha));
  EXPECT_EQ(format_of(png_of(alpha.get(), 32)), std::pair(8, with_alpha));
  EXPECT_EQ(format_of(png_of(alpha.get(), 24)), std::pair(8, without_alpha));
  EXPECT_EQ(format_of(png_of(opaque.get(), -1)), std::pair(8, without_alpha));
  EXPECT_EQ(format_of(png_of(opaque.get(), 32)), std::pair(8, without_alpha));
  write_file("opaque.png", png_of(opaque.get(), 24));
  EXPECT_EQ(decode_image("opaque.png").pixels, pixels_of(*opaque));
}

TEST_F(Rqgfx, AnOpaqueImageOfAtMost256ColorsHasAPalette) {
  for (const int colors : {1, 2, 255, 256, 257}) {
    hnDuctImage image(300, 40, false);
    for (int i = 0; i < 300 * 40; ++i)  // black and white are among the colours
      image.row(0)[i] = 0xFF000000 | static_cast<std::uint32_t>(i * 7 % colors) * (0xFFFFFFu / 255);
    image.row(20)[5] &= 0xFFFFFF;  // the top byte is not of the colour
    const std::string png = png_of(&image, 32);
    EXPECT_EQ(format_of(png), std::pair(8, colors <= 256 ? indexed : without_alpha)) << colors;
    write_file("a.png", png);
    image.row(20)[5] |= 0xFF000000;
    EXPECT_EQ(decode_image("a.png").pixels, pixels_of(image)) << colors;
  }
}

// Random colours: some share their place in the palette's table, in two rounds behind its last place.
TEST_F(Rqgfx, APaletteTellsItsColorsApart) {
  std::uint32_t noise = 1;
  for (int round = 0; round < 100; ++round) {
    hnDuctImage image(16, 32, false);
    for (int i = 0; i < 256; ++i) {
      noise = noise * 1664525 + 1013904223;
      image.row(0)[i] = image.row(0)[511 - i] = 0xFF000000 | noise >> 8;
    }
    const std::string png = png_of(&image, 32);
    ASSERT_EQ(format_of(png), std::pair(8, indexed));
    write_file("a.png", png);
    ASSERT_EQ(decode_image("a.png").pixels, pixels_of(image)) << round;
  }
}

TEST_F(Rqgfx, AnImageWithAlphaHasAPaletteWhereItsAlphaIsDropped) {
  const auto image = make_image(40, 40, true, true);
  EXPECT_EQ(format_of(png_of(image.get(), 32)), std::pair(8, with_alpha));
  write_file("a.png", png_of(image.get(), 24));
  EXPECT_EQ(format_of(read_file("a.png")), std::pair(8, indexed));
  EXPECT_EQ(decode_image("a.png").pixels[41], 0xFFD4D0C8);
}

TEST_F(Rqgfx, TheFileIsTheSameAsWhatTheSinkGets) {
  auto image = make_image(50, 70, true, false);
  std::string bytes;
  ASSERT_EQ(rqPNGWriterDuctImage::write_file(image.get(), append, &bytes, 1, 32), 1);
  ASSERT_EQ(rqPNGWriterDuctImage::write_file(image.get(), bzString("a.png"), 1, 32), 1);
  EXPECT_EQ(read_file("a.png"), bytes);
}

// The rows below the first tenth are overwritten when the first compressed bytes arrive. The result shows that they
// were not read earlier.
TEST_F(Rqgfx, TheFirstBytesComeBeforeATenthOfTheRowsIsRead) {
  constexpr size_t signature_and_header = 8 + 25;
  auto image = make_image(640, 1000, true, false);
  struct Taker {
    hnDuctImage* image;
    std::string bytes;
  } taker{image.get(), {}};
  const auto paint_over = [](void* context, const unsigned char* data, unsigned __int64 count) {
    auto& here = *static_cast<Taker*>(context);
    const bool was_early = here.bytes.size() <= signature_and_header;
    append(&here.bytes, data, count);
    if (was_early && here.bytes.size() > signature_and_header)
      std::fill(here.image->row(100), here.image->row(999) + 640, 0xFF112233);
    return true;
  };
  ASSERT_EQ(rqPNGWriterDuctImage::write_file(image.get(), paint_over, &taker, 1, 32), 1);
  write_file("a.png", taker.bytes);
  const DecodedImage decoded = decode_image("a.png");
  ASSERT_EQ(decoded.pixels, pixels_of(*image));
  EXPECT_NE(decoded.pixels.at(0), 0xFF112233);
  EXPECT_EQ(decoded.pixels.at(100 * 640), 0xFF112233);
}

TEST_F(Rqgfx, ASinkThatRefusesEndsTheEncoding) {
  auto image = make_image(300, 300, true, false);
  struct Calls {
    int count = 0, until;
  };
  for (int until : {1, 2, 5}) {
    Calls calls{0, until};
    const auto refuse = [](void* context, const unsigned char*, unsigned __int64) {
      auto& mine = *static_cast<Calls*>(context);
      return ++mine.count < mine.until;
    };
    EXPECT_EQ(rqPNGWriterDuctImage::write_file(image.get(), refuse, &calls, 1, 32), 0);
    EXPECT_LE(calls.count, until + 2);
  }
}

TEST_F(Rqgfx, BadImagesAndPathsAreRefused) {
  hnDuctImage nothing(0, 5, false);
  std::string bytes;
  EXPECT_EQ(rqPNGWriterDuctImage::write_file(&nothing, append, &bytes, -1, -1), 0);
  EXPECT_EQ(rqPNGWriterDuctImage::write_file(nullptr, append, &bytes, -1, -1), 0);
  EXPECT_EQ(bytes, "");
  auto image = make_image(2, 2, true, true);
  EXPECT_EQ(rqPNGWriterDuctImage::write_file(image.get(), bzString(""), -1, -1), 0);
  EXPECT_EQ(rqPNGWriterDuctImage::write_file(image.get(), bzString("no such folder\\a.png"), -1, -1), 0);
}

TEST_F(Rqgfx, ARefusedImageLeavesAnExistingFileAsItWas) {
  write_file("a.png", "an older picture");
  hnDuctImage nothing(0, 5, false);
  EXPECT_EQ(rqPNGWriterDuctImage::write_file(nullptr, bzString("a.png"), -1, -1), 0);
  EXPECT_EQ(read_file("a.png"), "an older picture");
  EXPECT_EQ(rqPNGWriterDuctImage::write_file(&nothing, bzString("a.png"), -1, -1), 0);
  EXPECT_EQ(read_file("a.png"), "an older picture");
}

TEST_F(Rqgfx, MemoryThatRunsOutIsAFailureAndNothingIsThrown) {
  const auto image = make_image(40, 40, false, true);
  const bzString path("a.png");
  int successes = 0;
  for (bool has_begun = true; has_begun; ++successes) {
    int result = -1;
    {
      const MemoryShortage shortage(GetCurrentThreadId(), successes);
      ASSERT_TRUE(shortage.made());
      try {
        result = rqPNGWriterDuctImage::write_file(image.get(), path, -1, -1);
      } catch (...) {
      }
      has_begun = shortage.has_begun();
    }
    EXPECT_EQ(result, has_begun ? 0 : 1) << successes;
  }
  EXPECT_GT(successes, 2);
  EXPECT_EQ(decode_image("a.png").pixels, pixels_of(*image));
}

TEST_F(Rqgfx, WhatTheSinkThrowsEndsTheEncoding) {
  const auto image = make_image(40, 40, true, false);
  const auto fail = [](void*, const unsigned char*, unsigned __int64) -> bool { throw 1; };
  EXPECT_NO_THROW(EXPECT_EQ(rqPNGWriterDuctImage::write_file(image.get(), fail, nullptr, 1, 32), 0));
}

}  // namespace
