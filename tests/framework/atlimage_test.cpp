// CImage: image files as DIB sections, and start and shutdown of GDI+.
#include <gtest/gtest.h>

#include <atlimage.h>
#include <gdiplus.h>

#include <support/encoded_image.h>
#include <support/expect_flat.h>
#include <support/files.h>
#include <support/import_override.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

// Three by two pixels, with alpha.
const std::string png_with_alpha(
    "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x03\x00\x00\x00\x02\x08"
    "\x06\x00\x00\x00\x9d\x74\x66\x1a\x00\x00\x00\x1e\x49\x44\x41\x54\x78\xda\x63\xf8\xcf\xc0\xf0\x1f\x08"
    "\x1b\x40\x14\x03\x97\x88\x9c\x06\x23\x13\xf3\xff\x13\x29\x46\x0e\x00\x68\xc3\x07\x84\xf7\xff\x70\x5a"
    "\x00\x00\x00\x00\x49\x45\x4e\x44\xae\x42\x60\x82",
    87);

// The same colours without alpha.
const std::string png_without_alpha(
    "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x03\x00\x00\x00\x02\x08"
    "\x02\x00\x00\x00\x12\x16\xf1\x4d\x00\x00\x00\x17\x49\x44\x41\x54\x78\xda\x63\xf8\xcf\xc0\xc0\x00\xc1"
    "\x5c\x22\x72\x8c\x4c\xcc\x27\x52\x8c\x00\x32\x21\x04\x9e\x9d\x01\x04\x35\x00\x00\x00\x00\x49\x45\x4e"
    "\x44\xae\x42\x60\x82",
    80);

// Three by two pixels of 8 bits: red, green, (10, 20, 30); then in reverse order.
const std::string png_with_palette(
    "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x03\x00\x00\x00\x02\x08"
    "\x03\x00\x00\x00\xaa\xaa\x96\x28\x00\x00\x00\x09\x50\x4c\x54\x45\xff\x00\x00\x00\xff\x00\x0a\x14\x1e"
    "\xd9\x7e\x4d\xe7\x00\x00\x00\x10\x49\x44\x41\x54\x78\xda\x63\x60\x60\x64\x62\x60\x62\x64\x00\x00\x00"
    "\x20\x00\x07\xf5\x2a\xdf\x2f\x00\x00\x00\x00\x49\x45\x4e\x44\xae\x42\x60\x82",
    94);

// Ten by two pixels of one bit: green and red alternating; then red and green.
const std::string png_one_bit(
    "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x0a\x00\x00\x00\x02\x01"
    "\x03\x00\x00\x00\x5b\xaf\xdf\x93\x00\x00\x00\x06\x50\x4c\x54\x45\xff\x00\x00\x00\xff\x00\xd2\x87\xef"
    "\x71\x00\x00\x00\x0e\x49\x44\x41\x54\x78\xda\x63\x58\xd5\xc0\x10\xea\x00\x00\x06\x42\x01\xc0\x56\x8e"
    "\x22\xdf\x00\x00\x00\x00\x49\x45\x4e\x44\xae\x42\x60\x82",
    89);

// Two by two pixels: red, blue; blue, red.
const std::string gif(
    "\x47\x49\x46\x38\x39\x61\x02\x00\x02\x00\x80\x00\x00\xff\x00\x00\x00\x00\xff\x2c\x00\x00\x00\x00\x02"
    "\x00\x02\x00\x00\x02\x03\x44\x02\x05\x00\x3b",
    36);

// The pixels from the top row down as 0xAARRGGBB. Alpha is 0 if the bitmap has none.
std::vector<unsigned long> pixels_of(HBITMAP bitmap) {
  BITMAP description{};
  GetObjectA(bitmap, sizeof description, &description);
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = description.bmWidth;
  header.biHeight = -description.bmHeight;
  header.biPlanes = 1;
  header.biBitCount = 32;
  std::vector<unsigned long> pixels(static_cast<size_t>(description.bmWidth * description.bmHeight));
  HDC context = CreateCompatibleDC(nullptr);
  GetDIBits(context, bitmap, 0, static_cast<UINT>(description.bmHeight), pixels.data(),
            reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS);
  DeleteDC(context);
  return pixels;
}

DIBSECTION section_of(HBITMAP bitmap) {
  DIBSECTION section{};
  EXPECT_EQ(GetObjectA(bitmap, sizeof section, &section), static_cast<int>(sizeof section)) << "no DIB section";
  return section;
}

bool exists(HBITMAP bitmap) { return GetObjectType(bitmap) == OBJ_BITMAP; }

// Each test has its own folder.
class Image : public testing::Test {
 protected:
  HRESULT load(CImage* image, const std::string& bytes) {
    write_file("picture", bytes);
    return image->Load("picture");
  }

  TemporaryFolder folder_;
};

TEST_F(Image, BeginsWithoutABitmap) {
  CImage image;
  EXPECT_TRUE(image.IsNull());
  EXPECT_EQ(static_cast<HBITMAP>(image), nullptr);
}

TEST_F(Image, AFileWithAlphaKeepsItUnmultiplied) {
  CImage image;
  ASSERT_EQ(load(&image, png_with_alpha), S_OK);
  EXPECT_FALSE(image.IsNull());
  EXPECT_EQ(image.GetWidth(), 3);
  EXPECT_EQ(image.GetHeight(), 2);
  EXPECT_EQ(image.GetBPP(), 32);
  EXPECT_EQ(section_of(image).dsBmih.biHeight, 2);
  EXPECT_EQ(pixels_of(image),
            (std::vector<unsigned long>{0xffff0000, 0x8000ff00, 0x000000ff, 0x280a141e, 0xff010203, 0x40c86432}));
}

TEST_F(Image, AFileWithoutAlphaHasTwentyFourBits) {
  CImage image;
  ASSERT_EQ(load(&image, png_without_alpha), S_OK);
  EXPECT_EQ(image.GetWidth(), 3);
  EXPECT_EQ(image.GetHeight(), 2);
  EXPECT_EQ(image.GetBPP(), 24);
  section_of(image);
  EXPECT_EQ(pixels_of(image), (std::vector<unsigned long>{0xff0000, 0x00ff00, 0x0000ff, 0x0a141e, 0x010203, 0xc86432}));
}

TEST_F(Image, APalettizedFileKeepsItsDepthAndColours) {
  CImage image;
  ASSERT_EQ(load(&image, png_with_palette), S_OK);
  EXPECT_EQ(image.GetBPP(), 8);
  section_of(image);
  EXPECT_EQ(pixels_of(image), (std::vector<unsigned long>{0xff0000, 0x00ff00, 0x0a141e, 0x0a141e, 0x00ff00, 0xff0000}));

  ASSERT_EQ(load(&image, png_one_bit), S_OK);
  EXPECT_EQ(image.GetBPP(), 1);
  EXPECT_EQ(image.GetWidth(), 10);
  unsigned long red = 0xff0000, green = 0x00ff00;
  EXPECT_EQ(pixels_of(image),
            (std::vector<unsigned long>{green, red,   green, red,   green, red,   green, red,   green, red,
                                        red,   green, red,   green, red,   green, red,   green, red,   green}));
}

TEST_F(Image, TheFormatIsReadFromTheFileNotFromItsName) {
  CImage image;
  write_file("picture.bmp", gif);
  ASSERT_EQ(image.Load("picture.bmp"), S_OK);
  EXPECT_EQ(image.GetWidth(), 2);
  EXPECT_EQ(image.GetHeight(), 2);
  std::vector<unsigned long> pixels = pixels_of(image);
  for (unsigned long& pixel : pixels) pixel &= 0xffffff;
  EXPECT_EQ(pixels, (std::vector<unsigned long>{0xff0000, 0x0000ff, 0x0000ff, 0xff0000}));
}

TEST_F(Image, JpegAndBitmapFilesAreRead) {
  ASSERT_TRUE(save_grey_image("picture.bmp", ImageFormat::Bmp, 16, 8));
  ASSERT_TRUE(save_grey_image("picture.jpg", ImageFormat::Jpeg, 16, 8));

  for (const char* name : {"picture.bmp", "picture.jpg"}) {
    CImage image;
    ASSERT_EQ(image.Load(name), S_OK) << name;
    EXPECT_EQ(image.GetWidth(), 16) << name;
    EXPECT_EQ(image.GetHeight(), 8) << name;
    EXPECT_EQ(image.GetBPP(), 24) << name;
    EXPECT_EQ(pixels_of(image), std::vector<unsigned long>(16 * 8, 0x808080)) << name;
  }
}

TEST_F(Image, ANameIsReadInTheThreadsCodePage) {
  CImage image;
  write_file(folder_.path() / L"pict\u00fcre", png_with_alpha);
  EXPECT_EQ(image.Load("pict\xfcre"), S_OK);
}

TEST_F(Image, TheFileIsClosedAfterwards) {
  CImage image;
  ASSERT_EQ(load(&image, png_with_alpha), S_OK);
  EXPECT_TRUE(DeleteFileA("picture"));
}

TEST_F(Image, WhatIsNoImageFailsAndLeavesTheObjectAsItWas) {
  CImage image;
  EXPECT_EQ(image.Load("missing"), E_FAIL);
  EXPECT_TRUE(image.IsNull());
  ASSERT_EQ(load(&image, png_with_alpha), S_OK);
  HBITMAP before = image;

  EXPECT_EQ(load(&image, ""), E_FAIL);
  EXPECT_EQ(load(&image, "This is no image."), E_FAIL);
  EXPECT_EQ(load(&image, png_with_alpha.substr(0, 20)), E_FAIL);
  std::string corrupt = png_with_alpha;
  corrupt[45] ^= 0x55;
  corrupt[60] ^= 0x55;
  EXPECT_EQ(load(&image, corrupt), E_FAIL);
  EXPECT_EQ(image.Load("."), E_FAIL);
  EXPECT_EQ(image.Load(""), E_FAIL);
  EXPECT_EQ(image.Load(nullptr), E_INVALIDARG);
  EXPECT_EQ(static_cast<HBITMAP>(image), before);
  EXPECT_TRUE(exists(before));
}

TEST_F(Image, ANewLoadDeletesTheBitmapBefore) {
  CImage image;
  ASSERT_EQ(load(&image, png_with_alpha), S_OK);
  HBITMAP before = image;
  CImage keeper;  // keeps the handle from being reused
  ASSERT_EQ(load(&keeper, gif), S_OK);
  ASSERT_EQ(load(&image, png_without_alpha), S_OK);
  EXPECT_NE(static_cast<HBITMAP>(image), before);
  EXPECT_FALSE(exists(before));
}

TEST_F(Image, DetachHandsTheBitmapOutAndAttachTakesOneOver) {
  HBITMAP bitmap = nullptr;
  {
    CImage image;
    ASSERT_EQ(load(&image, png_with_alpha), S_OK);
    bitmap = image.Detach();
    EXPECT_TRUE(image.IsNull());
  }
  ASSERT_TRUE(exists(bitmap));
  {
    CImage image;
    image.Attach(bitmap);
    EXPECT_EQ(image.GetWidth(), 3);
    image.Attach(bitmap, CImage::DIBOR_BOTTOMUP);
    EXPECT_TRUE(exists(bitmap));
  }
  EXPECT_FALSE(exists(bitmap));
}

TEST_F(Image, DestroyDeletesTheBitmapOnce) {
  CImage image;
  ASSERT_EQ(load(&image, png_with_alpha), S_OK);
  HBITMAP bitmap = image;
  image.Destroy();
  EXPECT_TRUE(image.IsNull());
  EXPECT_FALSE(exists(bitmap));
  image.Destroy();
  EXPECT_TRUE(image.IsNull());
}

TEST_F(Image, ABitmapOfTheDisplayHasItsSizeAndDepthToo) {
  HDC screen = GetDC(nullptr);
  CImage image;
  image.Attach(CreateCompatibleBitmap(screen, 7, 5));
  EXPECT_EQ(image.GetWidth(), 7);
  EXPECT_EQ(image.GetHeight(), 5);
  EXPECT_EQ(image.GetBPP(), GetDeviceCaps(screen, BITSPIXEL));
  ReleaseDC(nullptr, screen);
}

TEST_F(Image, AThousandImagesGoodAndBadLeaveNothingBehind) {
  write_file("good", png_with_alpha);
  write_file("palette", png_with_palette);
  write_file("bad", "This is no image.");
  expect_flat(1000, [] {
    CImage image;
    EXPECT_EQ(image.Load("good"), S_OK);
    EXPECT_EQ(image.Load("palette"), S_OK);
    EXPECT_EQ(image.Load("bad"), E_FAIL);
    EXPECT_EQ(image.Load("missing"), E_FAIL);
  });
}

// The calls of the framework that start GDI+ and shut it down.
namespace gdi_plus {

int starts = 0;
int ends = 0;
bool refuses = false;

Gdiplus::Status WINAPI start(ULONG_PTR* token, const Gdiplus::GdiplusStartupInput* input,
                             Gdiplus::GdiplusStartupOutput* output) {
  ++starts;
  return refuses ? Gdiplus::GenericError : Gdiplus::GdiplusStartup(token, input, output);
}

void WINAPI shut_down(ULONG_PTR token) {
  ++ends;
  Gdiplus::GdiplusShutdown(token);
}

}  // namespace gdi_plus

class GdiPlus : public Image {
 protected:
  GdiPlus() {
    gdi_plus::starts = gdi_plus::ends = 0;
    gdi_plus::refuses = false;
    write_file("picture", png_with_alpha);
  }

  void SetUp() override {
    ASSERT_TRUE(start_.made());
    ASSERT_TRUE(shut_down_.made());
  }

  ImportOverride start_{"kexframework.dll", "gdiplus.dll", "GdiplusStartup", &gdi_plus::start};
  ImportOverride shut_down_{"kexframework.dll", "gdiplus.dll", "GdiplusShutdown", &gdi_plus::shut_down};
};

TEST_F(GdiPlus, IsNotStartedForAnImageThatLoadsNothing) {
  {
    CImage image;
    image.Destroy();
  }
  EXPECT_EQ(gdi_plus::starts, 0);
  EXPECT_EQ(gdi_plus::ends, 0);
}

TEST_F(GdiPlus, IsStartedByTheFirstLoadAndShutDownWithTheLastImage) {
  auto first = std::make_unique<CImage>();
  auto second = std::make_unique<CImage>();
  EXPECT_EQ(first->Load("picture"), S_OK);
  EXPECT_EQ(second->Load("picture"), S_OK);
  EXPECT_EQ(first->Load("missing"), E_FAIL);
  EXPECT_EQ(gdi_plus::starts, 1);
  first.reset();
  EXPECT_EQ(gdi_plus::ends, 0);
  second.reset();
  EXPECT_EQ(gdi_plus::ends, 1);

  {
    CImage again;
    EXPECT_EQ(again.Load("picture"), S_OK);
  }
  EXPECT_EQ(gdi_plus::starts, 2);
  EXPECT_EQ(gdi_plus::ends, 2);
}

TEST_F(GdiPlus, ADetachedBitmapOutlivesIt) {
  HBITMAP bitmap = nullptr;
  {
    CImage image;
    EXPECT_EQ(image.Load("picture"), S_OK);
    bitmap = image.Detach();
  }
  EXPECT_EQ(gdi_plus::ends, 1);
  EXPECT_EQ(pixels_of(bitmap).at(1), 0x8000ff00u);
  DeleteObject(bitmap);
}

TEST_F(GdiPlus, IsShutDownOnRequestAndStartedAgainByTheNextLoad) {
  CImage image;
  CImage::ReleaseGDIPlus();
  EXPECT_EQ(gdi_plus::ends, 0);
  EXPECT_EQ(image.Load("picture"), S_OK);
  CImage::ReleaseGDIPlus();
  CImage::ReleaseGDIPlus();
  EXPECT_EQ(gdi_plus::ends, 1);
  EXPECT_EQ(image.GetWidth(), 3);
  EXPECT_EQ(image.Load("picture"), S_OK);
  EXPECT_EQ(gdi_plus::starts, 2);
}

TEST_F(GdiPlus, WhereItDoesNotStartLoadingFailsAndTriesAgainNextTime) {
  CImage image;
  gdi_plus::refuses = true;
  EXPECT_EQ(image.Load("picture"), E_FAIL);
  EXPECT_EQ(image.Load("picture"), E_FAIL);
  EXPECT_EQ(gdi_plus::starts, 2);
  CImage::ReleaseGDIPlus();
  EXPECT_EQ(gdi_plus::ends, 0);
  gdi_plus::refuses = false;
  EXPECT_EQ(image.Load("picture"), S_OK);
}

TEST_F(GdiPlus, IsStartedOnceByManyThreads) {
  CImage keeps_it_started;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([] {
      for (int round = 0; round < 50; ++round) {
        CImage image;
        EXPECT_EQ(image.Load("picture"), S_OK);
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(gdi_plus::starts, 1);
  EXPECT_EQ(gdi_plus::ends, 0);
}

}  // namespace
