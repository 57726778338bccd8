// The static bitmap on a real control of version 6: the ownership of bitmaps, and their sources.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/imaging/static_bitmap.h>

#include <afxwin.h>

#include <imaging/resources.h>
#include <support/encoded_image.h>
#include <support/files.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/resource_counts.h>

#include <random>
#include <string>
#include <vector>

namespace {

using StaticBitmap = wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>>;

// A section of two by two pixels.
HBITMAP make_bitmap(DWORD pixel) {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), 2, 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  for (int i = 0; i < 4; ++i) static_cast<DWORD*>(bits)[i] = pixel;
  return bitmap;
}
HBITMAP make_plain() { return make_bitmap(0x00102030); }
HBITMAP make_alpha() { return make_bitmap(0x80102030); }

// Whether a bitmap is not deleted: a deleted one cannot be selected.
bool is_alive(HBITMAP bitmap) {
  HDC memory = CreateCompatibleDC(nullptr);
  HGDIOBJ old = SelectObject(memory, bitmap);
  if (old) SelectObject(memory, old);
  DeleteDC(memory);
  return old != nullptr;
}

class StaticBitmapControl : public testing::Test {
 protected:
  StaticBitmapControl() {
    parent_ = CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr);
    window_ = CreateWindowA("STATIC", "", WS_CHILD | WS_VISIBLE | SS_BITMAP, 10, 10, 50, 50, parent_, nullptr, nullptr,
                            nullptr);
  }
  ~StaticBitmapControl() override { DestroyWindow(parent_); }

  void attach(StaticBitmap* control) { control->get_static().Attach(window_); }
  HBITMAP shown() const { return reinterpret_cast<HBITMAP>(SendMessageA(window_, STM_GETIMAGE, IMAGE_BITMAP, 0)); }
  SIZE shown_size() const {
    BITMAP description{};
    GetObjectA(shown(), sizeof description, &description);
    return {description.bmWidth, description.bmHeight};
  }

  TemporaryFolder folder_;
  HWND parent_;
  HWND window_;
};

TEST_F(StaticBitmapControl, BeginsWithoutAWindow) {
  StaticBitmap control;
  EXPECT_EQ(control.get_static().m_hWnd, nullptr);
}

TEST_F(StaticBitmapControl, APlainBitmapIsShownItselfAndStaysTheCallers) {
  HBITMAP first = make_plain(), second = make_plain();
  {
    StaticBitmap control;
    attach(&control);
    control.SetBitmap(first);
    EXPECT_EQ(shown(), first);
    control.SetBitmap(second);
    EXPECT_EQ(shown(), second);
    EXPECT_TRUE(is_alive(first));
  }
  EXPECT_TRUE(is_alive(second));
  EXPECT_TRUE(DeleteObject(first));
  EXPECT_TRUE(DeleteObject(second));
}

TEST_F(StaticBitmapControl, AnAlphaBitmapIsCopiedAndTheCopyIsDeletedWithTheNext) {
  HBITMAP first = make_alpha(), second = make_alpha();
  {
    StaticBitmap control;
    attach(&control);
    control.SetBitmap(first);
    HBITMAP copy = shown();
    ASSERT_NE(copy, first) << "the control is not of version 6";
    EXPECT_TRUE(is_alive(copy));
    control.SetBitmap(second);
    EXPECT_FALSE(is_alive(copy));
    EXPECT_TRUE(is_alive(first));
    EXPECT_NE(shown(), second);
    control.SetBitmap(nullptr);
    EXPECT_EQ(shown(), nullptr);
  }
  EXPECT_TRUE(DeleteObject(first));
  EXPECT_TRUE(DeleteObject(second));
}

TEST_F(StaticBitmapControl, AnOwnedPlainBitmapIsDeletedWithTheNextOrTheObject) {
  HBITMAP first = make_plain(), second = make_plain();
  {
    StaticBitmap control;
    attach(&control);
    control.set_internal_bitmap(first);
    EXPECT_EQ(shown(), first);
    EXPECT_TRUE(is_alive(first));
    control.set_internal_bitmap(second);
    EXPECT_FALSE(is_alive(first));
    EXPECT_TRUE(is_alive(second));
  }
  EXPECT_FALSE(is_alive(second));
}

TEST_F(StaticBitmapControl, AnOwnedAlphaBitmapIsDeletedAtOnceAndItsCopyWithTheNext) {
  StaticBitmap control;
  attach(&control);
  HBITMAP bitmap = make_alpha();
  control.set_internal_bitmap(bitmap);
  EXPECT_FALSE(is_alive(bitmap));
  HBITMAP copy = shown();
  EXPECT_TRUE(is_alive(copy));
  control.SetBitmap(nullptr);
  EXPECT_FALSE(is_alive(copy));
}

TEST_F(StaticBitmapControl, TheObjectLeavesACopyThatTheControlStillShows) {
  HBITMAP copy;
  {
    StaticBitmap control;
    attach(&control);
    control.set_internal_bitmap(make_alpha());
    copy = shown();
  }
  EXPECT_TRUE(is_alive(copy));
  EXPECT_TRUE(DeleteObject(copy));
}

TEST_F(StaticBitmapControl, WithoutAWindowAnOwnedBitmapIsDeletedAtOnce) {
  StaticBitmap control;
  HBITMAP bitmap = make_plain();
  control.set_internal_bitmap(bitmap);
  EXPECT_FALSE(is_alive(bitmap));
}

TEST_F(StaticBitmapControl, ResourcesAreShownAndOwned) {
  HBITMAP last;
  {
    StaticBitmap control;
    attach(&control);
    control.set_bitmap_from_id_given_resources(GetModuleHandle(nullptr), IDB_TWENTY_FOUR_BITS);
    EXPECT_EQ(shown_size().cx, 4);
    EXPECT_EQ(shown_size().cy, 2);
    control.set_bitmap_from_id(IDB_SQUARE);
    EXPECT_EQ(shown_size().cy, 4);
    last = shown();
    EXPECT_TRUE(is_alive(last));
  }
  EXPECT_FALSE(is_alive(last));
}

TEST_F(StaticBitmapControl, ResourcesAreSearchedInTheModulesThatTheFrameworkSearches) {
  constexpr UINT standard_pictures = 120;
  HMODULE other = GetModuleHandleA("comctl32.dll");
  StaticBitmap control;
  attach(&control);
  control.set_bitmap_from_id(standard_pictures);
  EXPECT_EQ(shown(), nullptr);
  const CDynLinkLibrary searched_too(other, other);
  control.set_bitmap_from_id(standard_pictures);
  EXPECT_NE(shown(), nullptr);
}

TEST_F(StaticBitmapControl, OfAResourceWithAlphaOneBitmapIsKeptUntilTheNext) {
  StaticBitmap control;
  attach(&control);
  control.set_bitmap_from_id(IDB_ALPHA);  // the first paint creates objects that are kept
  control.SetBitmap(nullptr);
  const int before = count_gdi_objects();
  control.set_bitmap_from_id(IDB_ALPHA);
  EXPECT_EQ(shown_size().cx, 2);
  EXPECT_EQ(shown_size().cy, 2);
  EXPECT_EQ(count_gdi_objects(), before + 1);
  control.SetBitmap(nullptr);
  EXPECT_EQ(count_gdi_objects(), before);
}

TEST_F(StaticBitmapControl, MissingResourcesShowNothing) {
  StaticBitmap control;
  attach(&control);
  control.set_internal_bitmap(make_plain());
  control.set_bitmap_from_id(IDB_MISSING);
  EXPECT_EQ(shown(), nullptr);
  constexpr UINT of_the_system = 32754;  // OBM_CLOSE
  ASSERT_NE(LoadBitmapW(nullptr, MAKEINTRESOURCEW(of_the_system)), nullptr);
  control.set_bitmap_from_id(of_the_system);
  EXPECT_EQ(shown(), nullptr);
  control.set_internal_bitmap(make_plain());
  control.set_bitmap_from_id_given_resources(GetModuleHandle(nullptr), IDB_MISSING);
  EXPECT_EQ(shown(), nullptr);
}

TEST_F(StaticBitmapControl, FilesOfEveryFormatAreShown) {
  constexpr struct {
    const char* name;
    ImageFormat format;
  } files[] = {{"a.bmp", ImageFormat::Bmp},
               {"a.jpg", ImageFormat::Jpeg},
               {"a.tif", ImageFormat::Tiff},
               {"a.png", ImageFormat::Png}};
  StaticBitmap control;
  attach(&control);
  int width = 3;
  for (const auto& file : files) {
    ASSERT_TRUE(save_grey_image(file.name, file.format, ++width, 2)) << file.name;
    control.set_bitmap_from_file(file.name);
    EXPECT_EQ(shown_size().cx, width) << file.name;
    EXPECT_EQ(shown_size().cy, 2) << file.name;
  }

  write_file("a.gif", std::string("GIF89a\2\0\1\0\x80\0\0\xff\0\0\0\0\xff,\0\0\0\0\2\0\1\0\0\2\2D\n\0;", 35));
  control.set_bitmap_from_file("a.gif");
  EXPECT_EQ(shown_size().cx, 2);
  EXPECT_EQ(shown_size().cy, 1);
}

TEST_F(StaticBitmapControl, AnOpaqueFileIsDrawnInItsColor) {
  ASSERT_TRUE(save_grey_image("grey.png", ImageFormat::Png, 20, 20));
  StaticBitmap control;
  attach(&control);
  control.set_bitmap_from_file("grey.png");
  ASSERT_TRUE(pump_until([&] { return Picture(window_).at(5, 5) == RGB(128, 128, 128); }));
  EXPECT_TRUE(Picture(window_).save("static_bitmap", 4));
}

TEST_F(StaticBitmapControl, AFileWithAlphaIsCopiedByTheControlAndTheOriginalIsGone) {
  ASSERT_TRUE(save_grey_image("alpha.png", ImageFormat::Png, 3, 2, true));
  StaticBitmap control;
  attach(&control);
  control.set_bitmap_from_file("alpha.png");  // the first paint creates objects that are kept
  control.SetBitmap(nullptr);
  const int before = count_gdi_objects();
  control.set_bitmap_from_file("alpha.png");
  EXPECT_EQ(shown_size().cx, 3);
  EXPECT_EQ(count_gdi_objects(), before + 1);
}

// What a decoder makes of a damaged file is the system's.
TEST_F(StaticBitmapControl, DamagedFilesShowAPictureOrNothing) {
  std::mt19937 random(1);
  StaticBitmap control;
  attach(&control);
  for (const ImageFormat format : {ImageFormat::Jpeg, ImageFormat::Tiff, ImageFormat::Png, ImageFormat::Bmp}) {
    ASSERT_TRUE(save_grey_image("whole", format, 13, 7));
    const std::string whole = read_file("whole");
    const auto damage = [&] {
      std::string file = whole.substr(0, random() % 2 ? whole.size() : random() % whole.size());
      for (unsigned i = random() % 4; i > 0 && !file.empty(); --i)
        file[random() % file.size()] = static_cast<char>(random());
      write_file("damaged", file);
      control.set_bitmap_from_file("damaged");
      EXPECT_LE(shown_size().cx, 0x7FFF) << static_cast<int>(format);
    };
    for (int i = 0; i < 20; ++i) damage();
    control.SetBitmap(nullptr);
    const int before = count_gdi_objects();  // under Wine each load after a TIFF file leaves a kernel handle
    for (int i = 0; i < 100; ++i) damage();
    control.SetBitmap(nullptr);
    EXPECT_EQ(count_gdi_objects(), before) << static_cast<int>(format);
    control.set_bitmap_from_file("whole");
    EXPECT_EQ(shown_size().cx, 13) << static_cast<int>(format);
  }
}

TEST_F(StaticBitmapControl, FilesThatAreNoImagesShowNothing) {
  write_file("empty.png", "");
  write_file("text.png", "no image at all");
  ASSERT_TRUE(save_grey_image("whole.png", ImageFormat::Png, 30, 20));
  write_file("cut.png", read_file("whole.png").substr(0, 20));
  StaticBitmap control;
  attach(&control);
  for (const char* name : {"missing.png", "empty.png", "text.png", "cut.png", "", static_cast<const char*>(nullptr)}) {
    control.set_internal_bitmap(make_plain());
    control.set_bitmap_from_file(name);
    EXPECT_EQ(shown(), nullptr) << (name ? name : "null");
  }
}

TEST_F(StaticBitmapControl, AHundredRoundsLeaveNothingBehind) {
  ASSERT_TRUE(save_grey_image("alpha.png", ImageFormat::Png, 3, 2, true));
  ASSERT_TRUE(save_grey_image("plain.png", ImageFormat::Png, 3, 2));
  HBITMAP mine = make_alpha();
  const auto round = [&] {
    StaticBitmap control;
    attach(&control);
    control.set_bitmap_from_file("alpha.png");
    control.SetBitmap(mine);
    control.set_bitmap_from_file("plain.png");
    control.set_bitmap_from_id(IDB_SQUARE);
    control.set_bitmap_from_file("missing.png");
    control.set_internal_bitmap(make_alpha());
    control.SetBitmap(nullptr);
  };
  round();
  const ResourceCounts before;
  for (int i = 0; i < 100; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
  EXPECT_TRUE(is_alive(mine));
  DeleteObject(mine);
}

TEST_F(StaticBitmapControl, EachObjectThatGoesWhileACopyIsShownLeavesExactlyThatCopy) {
  const auto round = [&] {
    StaticBitmap control;
    attach(&control);
    control.set_internal_bitmap(make_alpha());
  };
  round();
  const int before = count_gdi_objects();
  for (int i = 0; i < 100; ++i) round();
  EXPECT_EQ(count_gdi_objects(), before + 100);
}

}  // namespace
