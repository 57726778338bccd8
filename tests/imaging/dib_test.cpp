// kexWTLDIB: its bitmap and device context, loading and copying, and the effects with the system's colours.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/imaging/dib.h>

#include <imaging/pixel_effects.h>
#include <imaging/resources.h>
#include <support/decoded_image.h>
#include <support/files.h>
#include <support/import_override.h>
#include <support/picture.h>
#include <support/resource_counts.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

using Pixels = std::vector<DWORD>;  // the bottom row first

constexpr DWORD K = 0xFF00FF, X = 0x010203;
constexpr COLORREF substitute = RGB(0x11, 0x22, 0x33);
constexpr DWORD S = 0x112233;
const Pixels chessboard{K, X, K, X, X, K, X, K};
const Pixels chessboard_without_key{S, X, S, X, X, S, X, S};

DWORD system_pixel(int index) {
  const COLORREF color = GetSysColor(index);
  return RGB(GetBValue(color), GetGValue(color), GetRValue(color));
}

// With what is protected, and all pixels at once.
class Dib : public kexWTLDIB {
 public:
  using kexWTLDIB::copy_to_dc;
  using kexWTLDIB::destroy;
  using kexWTLDIB::m_bitmap;
  using kexWTLDIB::m_bits;
  using kexWTLDIB::m_bmi;
  using kexWTLDIB::m_dc;
  using kexWTLDIB::m_old_bitmap;
  using kexWTLDIB::UpdateSubstituteBits;

  Dib() = default;
  Dib(int width, Pixels pixels) {
    EXPECT_EQ(create(width, static_cast<int>(pixels.size()) / width), 1);
    std::copy(pixels.begin(), pixels.end(), m_bits);
  }

  Pixels pixels() const {
    GdiFlush();
    return Pixels(m_bits, m_bits + m_size.cx * m_size.cy);
  }
};

bool has_no_picture(const Dib& dib) { return !dib.m_bits && !dib.m_bitmap && dib.GetSize() == WTL::CSize(); }

// A bitmap of the screen's format with these pixels.
void make_bitmap(WTL::CBitmap* bitmap, int width, Pixels pixels) {
  HDC screen = GetDC(nullptr);
  const int height = static_cast<int>(pixels.size()) / width;
  bitmap->CreateCompatibleBitmap(screen, width, height);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  EXPECT_EQ(SetDIBits(screen, *bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS), height);
  ReleaseDC(nullptr, screen);
}

Pixels without_top_bytes(Pixels pixels) {
  for (DWORD& pixel : pixels) pixel &= 0xFFFFFF;
  return pixels;
}

TEST(Dib, BeginsWithoutAPictureButWithADeviceContext) {
  Dib dib;
  EXPECT_TRUE(has_no_picture(dib));
  EXPECT_EQ(dib.is_blank(), 0);
  EXPECT_EQ(GetObjectType(dib.m_dc), DWORD{OBJ_MEMDC});
  EXPECT_EQ(dib.m_old_bitmap, GetCurrentObject(dib.m_dc, OBJ_BITMAP));
}

TEST(Dib, ANewPictureIsABottomUpSectionSelectedIntoTheContext) {
  Dib dib;
  ASSERT_EQ(dib.create(5, 3), 1);
  EXPECT_EQ(dib.GetSize(), WTL::CSize(5, 3));
  EXPECT_EQ(GetCurrentObject(dib.m_dc, OBJ_BITMAP), dib.m_bitmap);
  const BITMAPINFOHEADER& header = dib.m_bmi.bmiHeader;
  EXPECT_EQ(header.biSize, 40u);
  EXPECT_EQ(header.biWidth, 5);
  EXPECT_EQ(header.biHeight, 3);
  EXPECT_EQ(header.biPlanes, 1);
  EXPECT_EQ(header.biBitCount, 32);
  EXPECT_EQ(header.biCompression, DWORD{BI_RGB});
  EXPECT_EQ(header.biSizeImage, 60u);
  SetPixel(dib.m_dc, 0, 0, RGB(1, 2, 3));  // the upper left
  EXPECT_EQ(dib.pixels()[10] & 0xFFFFFF, 0x010203u);
}

TEST(Dib, ANewPictureReplacesTheOldOne) {
  Dib dib;
  ASSERT_EQ(dib.create(5, 3), 1);
  HBITMAP first = dib.m_bitmap;
  ASSERT_EQ(dib.create(1, 1), 1);
  EXPECT_EQ(dib.GetSize(), WTL::CSize(1, 1));
  EXPECT_TRUE(dib.m_bitmap == first || GetObjectType(first) == 0);
}

TEST(Dib, ImpossibleSizesLeaveNoPicture) {
  for (auto [width, height] : {std::pair{0, 0}, {0, 5}, {5, 0}, {-1, 5}, {5, -1}, {32768, 32768}, {0x7FFFFFFF, 2}}) {
    Dib dib;
    ASSERT_EQ(dib.create(1, 1), 1);
    EXPECT_EQ(dib.create(width, height), 0) << width << " x " << height;
    EXPECT_TRUE(has_no_picture(dib));
    EXPECT_EQ(GetCurrentObject(dib.m_dc, OBJ_BITMAP), dib.m_old_bitmap);
  }
}

HBITMAP WINAPI no_section(HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD) { return nullptr; }

TEST(Dib, ASystemThatMakesNoSectionLeavesNoPicture) {
  Dib dib;
  ASSERT_EQ(dib.create(2, 2), 1);
  ImportOverride refuse("kexlib.dll", "gdi32.dll", "CreateDIBSection", no_section);
  ASSERT_TRUE(refuse.made());
  EXPECT_EQ(dib.create(2, 2), 0);
  EXPECT_TRUE(has_no_picture(dib));
}

TEST(Dib, WithoutAPictureEveryOperationIsHarmless) {
  Dib dib, other;
  WTL::CBitmap none;
  dib.Fill(0);
  dib.insensitive(0);
  dib.cool_stipple();
  dib.down();
  dib.merge(other);
  dib.draw_button_edge(1, 0);
  dib.draw_button_flat(kexEdgeRaised, 0);
  dib.copy_from(&other);
  dib.copy_from(nullptr);
  dib.copy_to_dc(nullptr, 0, 0);
  EXPECT_EQ(dib.get_bitmap(&none), 0);
  EXPECT_EQ(dib.get_bitmap(nullptr), 0);
  EXPECT_EQ(dib.set_bitmap(&none), 0);
  EXPECT_EQ(dib.set_bitmap(nullptr), 0);
  EXPECT_EQ(dib.set_bitmap_transparent(nullptr), 0);
  EXPECT_EQ(dib.detach_bitmap(), nullptr);
  EXPECT_EQ(dib.destroy(), 1);
  EXPECT_TRUE(has_no_picture(dib));
  dib.UpdateSubstituteBits(0);
  EXPECT_EQ(dib.is_blank(), 1);  // there is nothing but the key in nothing
}

TEST(Dib, FillingStoresTheColorWithRedAndBlueExchanged) {
  Dib dib(3, Pixels(6, 0xFFFFFFFF));
  dib.Fill(RGB(1, 2, 3));
  EXPECT_EQ(dib.pixels(), Pixels(6, 0x00010203));
}

TEST(Dib, ADetachedBitmapIsTheCallersAndFreeToBeSelected) {
  WTL::CBitmap bitmap;
  {
    Dib dib(2, {X, K, K, X});
    bitmap.Attach(dib.detach_bitmap());
    EXPECT_TRUE(has_no_picture(dib));
    EXPECT_EQ(GetCurrentObject(dib.m_dc, OBJ_BITMAP), dib.m_old_bitmap);
  }
  WTL::CDC memory;
  memory.CreateCompatibleDC();
  HBITMAP old = memory.SelectBitmap(bitmap);
  ASSERT_NE(old, nullptr);
  EXPECT_EQ(memory.GetPixel(0, 1), RGB(1, 2, 3));  // the lower left
  memory.SelectBitmap(old);
}

TEST(Dib, ACopySharesEveryHandleWithItsSource) {
  Dib dib(2, {X, K, K, X});
  {
    alignas(Dib) unsigned char memory[sizeof(Dib)];
    auto* copy = new (memory) Dib(dib);  // never destroyed: it would release what the source has
    EXPECT_EQ(copy->m_dc.m_hDC, dib.m_dc.m_hDC);
    EXPECT_EQ(copy->m_bitmap, dib.m_bitmap);
    EXPECT_EQ(copy->m_bits, dib.m_bits);
    EXPECT_EQ(copy->GetSize(), dib.GetSize());
  }
  Dib assigned;
  const auto own_dc = assigned.m_dc;
  assigned = dib;
  EXPECT_EQ(assigned.m_bits, dib.m_bits);
  EXPECT_EQ(GetObjectType(own_dc), DWORD{OBJ_MEMDC});  // lost, not released
  DeleteDC(own_dc);
  dib.m_dc = nullptr;  // let go of, so that one of the two releases it
  dib.m_bitmap = nullptr;
}

TEST(Dib, ResourcesOfEveryDepthAreLoaded) {
  HINSTANCE module = GetModuleHandle(nullptr);
  for (unsigned id : {IDB_ONE_BIT + 0u, IDB_FOUR_BITS + 0u, IDB_EIGHT_BITS + 0u, IDB_TWENTY_FOUR_BITS + 0u,
                      IDB_THIRTY_TWO_BITS + 0u}) {
    Dib dib;
    EXPECT_EQ(dib.load_bitmap(id, module), 1) << id;
    EXPECT_EQ(dib.GetSize(), WTL::CSize(4, 2)) << id;
    EXPECT_EQ(without_top_bytes(dib.pixels()), chessboard) << id;
    EXPECT_EQ(dib.load_bitmap_transparent(id, module, substitute), 1) << id;
    EXPECT_EQ(without_top_bytes(dib.pixels()), chessboard_without_key) << id;
    EXPECT_EQ(dib.is_blank(), 0) << id;
  }
}

TEST(Dib, ResourcesAreFoundByName) {
  Dib dib;
  EXPECT_EQ(dib.load_bitmap("CHESSBOARD", GetModuleHandle(nullptr)), 1);
  EXPECT_EQ(without_top_bytes(dib.pixels()), chessboard);
  EXPECT_EQ(dib.load_bitmap_transparent("chessboard", GetModuleHandle(nullptr), substitute), 1);
  EXPECT_EQ(without_top_bytes(dib.pixels()), chessboard_without_key);
}

TEST(Dib, AMissingResourceLeavesThePictureThatWas) {
  Dib dib(1, {X});
  EXPECT_EQ(dib.load_bitmap(IDB_MISSING, GetModuleHandle(nullptr)), 0);
  EXPECT_EQ(dib.load_bitmap("MISSING", GetModuleHandle(nullptr)), 0);
  EXPECT_EQ(dib.load_bitmap(static_cast<const char*>(nullptr), GetModuleHandle(nullptr)), 0);
  EXPECT_EQ(dib.load_bitmap_transparent(IDB_MISSING, GetModuleHandle(nullptr), 0), 0);
  EXPECT_EQ(dib.load_bitmap_transparent("MISSING", GetModuleHandle(nullptr), 0), 0);
  EXPECT_EQ(dib.pixels(), Pixels{X});
}

TEST(Dib, ABitmapOfTheKeyAloneIsBlank) {
  Dib dib;
  EXPECT_EQ(dib.load_bitmap_transparent(IDB_MAGENTA, GetModuleHandle(nullptr), substitute), 1);
  EXPECT_EQ(dib.pixels(), Pixels{S});
  EXPECT_EQ(dib.is_blank(), 1);
  EXPECT_EQ(dib.load_bitmap(IDB_ONE_BIT, GetModuleHandle(nullptr)), 1);
  EXPECT_EQ(dib.is_blank(), 1);  // only a substitution tells anew
  dib.UpdateSubstituteBits(substitute);
  EXPECT_EQ(dib.is_blank(), 0);
}

class DibFiles : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

std::string bytes_of_file(int width, int height, const Pixels& pixels) {
  BITMAPINFOHEADER header{sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const auto bytes = static_cast<DWORD>(pixels.size() * sizeof(DWORD));
  std::string text = "BM";
  for (DWORD field : {DWORD{54} + bytes, DWORD{0}, DWORD{54}}) text.append(reinterpret_cast<const char*>(&field), 4);
  text.append(reinterpret_cast<const char*>(&header), sizeof header);
  text.append(reinterpret_cast<const char*>(pixels.data()), bytes);
  return text;
}

TEST_F(DibFiles, AreLoadedWithTheirKeyReplaced) {
  write_file("picture.bmp", bytes_of_file(4, 2, chessboard));
  Dib dib;
  EXPECT_EQ(dib.LoadBitmapFromFile("picture.bmp", substitute), 1);
  EXPECT_EQ(dib.GetSize(), WTL::CSize(4, 2));
  EXPECT_EQ(dib.pixels(), chessboard_without_key);
  EXPECT_EQ(dib.is_blank(), 0);
}

TEST_F(DibFiles, ThatAreNoBitmapsLeaveNoPicture) {
  write_file("empty.bmp", "");
  write_file("text.bmp", "BM, said the file, and that was all");
  write_file("cut.bmp", bytes_of_file(4, 2, chessboard).substr(0, 10));
  for (const char* name : {"missing.bmp", "empty.bmp", "text.bmp", "cut.bmp", ""}) {
    Dib dib(1, {X});
    EXPECT_EQ(dib.LoadBitmapFromFile(name, 0), 0) << name;
    EXPECT_TRUE(has_no_picture(dib)) << name;
  }
}

TEST(Dib, ABitmapIsTakenOverWithItsSize) {
  WTL::CBitmap bitmap;
  make_bitmap(&bitmap, 2, {1, 2, 3, 4, 5, 6});
  Dib dib(1, {X});
  EXPECT_EQ(dib.set_bitmap(&bitmap), 1);
  EXPECT_EQ(dib.GetSize(), WTL::CSize(2, 3));
  EXPECT_EQ(without_top_bytes(dib.pixels()), (Pixels{1, 2, 3, 4, 5, 6}));
  const DWORD* bits = dib.m_bits;
  EXPECT_EQ(dib.set_bitmap(&bitmap), 1);
  EXPECT_EQ(dib.m_bits, bits);  // the same size: the section stays
  EXPECT_EQ(GetObjectType(bitmap), DWORD{OBJ_BITMAP});
}

TEST(Dib, AnErrorFromBeforeDoesNotCountAndIsThereAfterwards) {
  WTL::CBitmap bitmap;
  make_bitmap(&bitmap, 2, {1, 2, 3, 4});
  Dib dib;
  SetLastError(1234);
  EXPECT_EQ(dib.set_bitmap(&bitmap), 1);
  EXPECT_EQ(GetLastError(), 1234u);
}

int WINAPI copy_nothing(HDC, HBITMAP, UINT, UINT, void*, BITMAPINFO*, UINT) { return 0; }
int WINAPI copy_with_error(HDC, HBITMAP, UINT, UINT lines, void*, BITMAPINFO*, UINT) {
  SetLastError(ERROR_INVALID_PARAMETER);
  return static_cast<int>(lines);
}

TEST(Dib, TheLastErrorDecidesNotWhatTheCallReturns) {
  WTL::CBitmap bitmap;
  make_bitmap(&bitmap, 2, {1, 2, 3, 4});
  {
    ImportOverride nothing("kexlib.dll", "gdi32.dll", "GetDIBits", copy_nothing);
    ASSERT_TRUE(nothing.made());
    Dib dib;
    EXPECT_EQ(dib.set_bitmap(&bitmap), 1);
  }
  ImportOverride error("kexlib.dll", "gdi32.dll", "GetDIBits", copy_with_error);
  Dib dib(2, {1, 2, 3, 4});
  SetLastError(1234);
  EXPECT_EQ(dib.set_bitmap(&bitmap), 0);
  EXPECT_EQ(GetLastError(), 1234u);
  EXPECT_TRUE(has_no_picture(dib));
}

int deleted_dcs = 0, released_dcs = 0;
BOOL WINAPI count_delete(HDC dc) {
  ++deleted_dcs;
  return DeleteDC(dc);
}
int WINAPI count_release(HWND window, HDC dc) {
  ++released_dcs;
  return ReleaseDC(window, dc);
}

TEST(Dib, TheDesktopsContextIsDeletedAndNotReleased) {
  WTL::CBitmap bitmap;
  make_bitmap(&bitmap, 2, {1, 2, 3, 4});
  Dib dib;
  deleted_dcs = released_dcs = 0;
  ImportOverride deletion("kexlib.dll", "gdi32.dll", "DeleteDC", count_delete);
  ASSERT_TRUE(deletion.made());
  ImportOverride release("kexlib.dll", "user32.dll", "ReleaseDC", count_release);  // not even imported, perhaps
  EXPECT_EQ(dib.set_bitmap(&bitmap), 1);
  EXPECT_EQ(deleted_dcs, 1);
  EXPECT_EQ(released_dcs, 0);
}

TEST(Dib, ABitmapOfTheSameSizeGetsThePixels) {
  WTL::CBitmap bitmap, other;
  make_bitmap(&bitmap, 2, {0, 0, 0, 0});
  make_bitmap(&other, 2, {0, 0, 0, 0, 0, 0});
  Dib dib(2, {1, 2, 3, 4});
  EXPECT_EQ(dib.get_bitmap(&bitmap), 1);
  EXPECT_EQ(dib.get_bitmap(&other), 0);
  Dib back;
  EXPECT_EQ(back.set_bitmap(&bitmap), 1);
  EXPECT_EQ(without_top_bytes(back.pixels()), (Pixels{1, 2, 3, 4}));
  EXPECT_EQ(back.set_bitmap(&other), 1);
  EXPECT_EQ(without_top_bytes(back.pixels()), Pixels(6, 0));
}

TEST(Dib, ABitmapHandedOverIsDeletedAndItsKeyBecomesTheFace) {
  WTL::CBitmap bitmap;
  make_bitmap(&bitmap, 2, {K, X, X, K});
  HBITMAP handed_over = bitmap.Detach();
  Dib dib;
  EXPECT_EQ(dib.set_bitmap_transparent(handed_over), 1);
  const DWORD face = system_pixel(COLOR_BTNFACE);
  EXPECT_EQ(without_top_bytes(dib.pixels()), (Pixels{face, X, X, face}));
  EXPECT_EQ(GetObjectType(handed_over), 0u);
}

TEST(Dib, ABitmapHandedOverInVainIsDeletedToo) {
  WTL::CBitmap bitmap;
  make_bitmap(&bitmap, 2, {K, X, X, K});
  HBITMAP handed_over = bitmap.Detach();
  ImportOverride error("kexlib.dll", "gdi32.dll", "GetDIBits", copy_with_error);
  Dib dib;
  EXPECT_EQ(dib.set_bitmap_transparent(handed_over), 0);
  EXPECT_EQ(GetObjectType(handed_over), 0u);
}

TEST(Dib, PicturesAreCopiedWithTheirSize) {
  Dib from(2, {1, 2, 3, 0x80000004}), to(1, {X});
  to.copy_from(&from);
  EXPECT_EQ(to.GetSize(), WTL::CSize(2, 2));
  EXPECT_EQ(to.pixels(), from.pixels());
  EXPECT_NE(to.m_bits, from.m_bits);
  to.copy_from(&to);
  EXPECT_EQ(to.pixels(), from.pixels());
  Dib none;
  to.copy_from(&none);
  EXPECT_TRUE(has_no_picture(to));
}

TEST(Dib, IsDrawnWithItsUpperLeftCornerAtThePlace) {
  Dib dib(2, {0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF});
  Picture picture(4, 4, RGB(9, 9, 9));
  WTL::CDC dc(picture.dc());
  dib.copy_to_dc(&dc, 1, 1);
  dc.Detach();
  EXPECT_EQ(picture.at(0, 0), RGB(9, 9, 9));
  EXPECT_EQ(picture.at(1, 1), RGB(255, 0, 0));
  EXPECT_EQ(picture.at(2, 1), RGB(255, 255, 255));
  EXPECT_EQ(picture.at(1, 2), RGB(0, 0, 255));
  EXPECT_EQ(picture.at(2, 2), RGB(0, 255, 0));
  EXPECT_EQ(picture.at(3, 3), RGB(9, 9, 9));
}

TEST(Dib, EffectsSeeWhatGdiHasJustDrawn) {
  Dib dib(2, Pixels(4, 0));
  for (int i = 0; i < 100; ++i) {
    SetPixel(dib.m_dc, 0, 1, RGB(255, 0, 255));
    SetPixel(dib.m_dc, 1, 1, RGB(i, 0, 0));
    dib.UpdateSubstituteBits(substitute);
    ASSERT_EQ(dib.m_bits[0], S);
    ASSERT_EQ(dib.m_bits[1] & 0xFFFFFF, static_cast<DWORD>(i) << 16);
  }
}

TEST(Dib, TintsOnePixel) {
  EXPECT_EQ(kexWTLDIB::TintColor(0x406080, RGB(0, 0, 0), RGB(0x40, 0x60, 0x80), RGB(255, 255, 255)), 0x406080u);
}

TEST(Dib, TheDisabledLookGoesFromShadowOverFaceToWhite) {
  const COLORREF shadow = GetSysColor(COLOR_BTNSHADOW), face = GetSysColor(COLOR_BTNFACE);
  const DWORD face_pixel = system_pixel(COLOR_BTNFACE);
  Dib dib(4, {0x80000000, face_pixel, 0xFFFFFF, X}), same(4, {0x80000000, face_pixel, 0xFFFFFF, X});
  dib.insensitive(RGB(1, 2, 3));
  same.Color3Tint(shadow, face, RGB(255, 255, 255), RGB(1, 2, 3), 0);
  EXPECT_EQ(dib.pixels(), same.pixels());
  EXPECT_EQ(dib.pixels()[0], 0x80000000u | system_pixel(COLOR_BTNSHADOW));
  EXPECT_EQ(dib.pixels()[1], face_pixel);
  EXPECT_EQ(dib.pixels()[3], X);
}

TEST(Dib, TheStippleMixesHighlightIntoTheFace) {
  const DWORD face = system_pixel(COLOR_BTNFACE), highlight = system_pixel(COLOR_BTNHIGHLIGHT);
  ASSERT_NE(face, highlight);
  Dib dib(5, Pixels(25, face));
  dib.cool_stipple();
  Pixels expected(25, face);
  expected[1 * 5 + 2] = highlight;
  EXPECT_EQ(dib.pixels(), expected);
}

TEST(Dib, ThePressedLookOfTwoByTwoMovesOnePixel) {
  Dib dib(2, {1, 2, 3, 4});
  dib.down();
  EXPECT_EQ(dib.pixels(), (Pixels{1, 3, 3, 4}));
}

TEST(Dib, MergingTakesWhatIsNotTheFaceFromAPictureOfTheSameSize) {
  const DWORD face = system_pixel(COLOR_BTNFACE);
  Dib dib(2, {1, 2, 3, 4}), other(2, {face, 5, face | 0x80000000, 6}), high(1, {7, 7, 7, 7});
  dib.merge(high);
  EXPECT_EQ(dib.pixels(), (Pixels{1, 2, 3, 4}));
  dib.merge(other);
  EXPECT_EQ(dib.pixels(), (Pixels{1, 5, face | 0x80000000, 6}));
}

constexpr DWORD white = 0xFFFFFF, grey = 0x808080, black = 0x000000, face_color = 0x102030;
constexpr COLORREF face = RGB(0x10, 0x20, 0x30);

TEST(Dib, TheRaisedEdgeIsLightAboveAndDarkBelow) {
  Dib dib(4, Pixels(16, X));
  dib.draw_button_edge(1, face);
  EXPECT_EQ(dib.pixels(), (Pixels{black, black, black, black,      // bottom
                                  white, grey, grey, black,        //
                                  white, face_color, grey, black,  //
                                  white, white, white, black}));
}

TEST(Dib, TheSunkenEdgeHasABlackCornerToo) {
  Dib dib(4, Pixels(16, X));
  dib.draw_button_edge(0, face);
  EXPECT_EQ(dib.pixels(), (Pixels{white, white, white, white,            //
                                  black, face_color, face_color, white,  //
                                  black, grey, face_color, white,        //
                                  black, black, black, black}));
}

TEST(Dib, FlatEdgesHaveTheSystemsColors) {
  const DWORD light = system_pixel(COLOR_BTNHIGHLIGHT), shadow = system_pixel(COLOR_BTNSHADOW), f = face_color;
  Dib raised(4, Pixels(16, X)), sunken(4, Pixels(16, X)), flat(4, Pixels(16, X)), unknown(4, Pixels(16, X));
  raised.draw_button_flat(kexEdgeRaised, face);
  sunken.draw_button_flat(kexEdgeSunken, face);
  flat.draw_button_flat(kexEdgeFlat, face);
  unknown.draw_button_flat(static_cast<kexWTLDIBEdgeStyle>(3), face);
  EXPECT_EQ(raised.pixels(), (Pixels{shadow, shadow, shadow, shadow,  //
                                     light, f, f, shadow,             //
                                     light, f, f, shadow,             //
                                     light, light, light, shadow}));
  EXPECT_EQ(sunken.pixels(), (Pixels{light, light, light, light,  //
                                     shadow, f, f, light,         //
                                     shadow, f, f, light,         //
                                     shadow, shadow, shadow, light}));
  EXPECT_EQ(flat.pixels(), Pixels(16, f));
  EXPECT_EQ(unknown.pixels(), Pixels(16, f));
}

TEST(Dib, RoundsOfLoadingAndCopyingLeaveNothingBehind) {
  const auto round = [] {
    Dib dib, other;
    dib.load_bitmap_transparent(IDB_EIGHT_BITS, GetModuleHandle(nullptr), substitute);
    other.copy_from(&dib);
    other.load_bitmap(IDB_MISSING, GetModuleHandle(nullptr));
    other.LoadBitmapFromFile("missing.bmp", 0);
    WTL::CBitmap detached(dib.detach_bitmap());
  };
  round();
  const ResourceCounts before;
  for (int i = 0; i < 1000; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

// What every effect makes of one picture with fixed colours, side by side; build/pictures/pixel_effects.png shows it.
// Whoever changes an effect on purpose looks at that file and copies it to tests/imaging/effects.png.
TEST(Dib, TheEffectsMakeTheSamePictureAsEver) {
  constexpr int size = 24, count = 10;
  constexpr DWORD face_pixel = 0xD4D0C8;
  const auto subject = [&] {
    std::vector<kexlib::Pixel> pixels(size * size, face_pixel);
    for (int y = 3; y < 21; ++y)
      for (int x = 3; x < 21; ++x)
        if ((x - 12) * (x - 12) + (y - 12) * (y - 12) < 81)
          pixels[static_cast<size_t>(y * size + x)] =
              x == y ? kexlib::key_pixel : static_cast<DWORD>(x * 12 << 16 | y * 12 << 8 | (x ^ y) * 8);
    return pixels;
  };
  const kexlib::EdgePixels edge{0xFFFFFF, 0xE4E0D8, 0x404040, 0x808080, 0xFFFFFF, 0x404040, 0x202020};
  Picture sheet(size * count, size, 0);
  int column = 0;
  const auto show = [&](auto effect) {
    std::vector<kexlib::Pixel> pixels = subject();
    effect(kexlib::PixelSpan{pixels.data(), size, size});
    for (int y = 0; y < size; ++y)
      for (int x = 0; x < size; ++x)
        SetPixelV(sheet.dc(), column * size + x, size - 1 - y,
                  kexlib::pixel_of(pixels[static_cast<size_t>(y * size + x)]));
    ++column;
  };
  using Span = kexlib::PixelSpan;
  show([](Span) {});
  show([](Span picture) { kexlib::fill(picture, 0x336699); });
  show([](Span picture) { kexlib::substitute_key(picture, 0x00FF00); });
  show([](Span picture) { kexlib::tint_all(picture, 0x500000, 0xAA5500, 0xFFFFFF, 0xC8D0D4, 0); });
  show([](Span picture) { kexlib::tint_all(picture, 0x000000, 0x808080, 0xFFFFFF, 0xC8D0D4, 200); });
  show([](Span picture) { kexlib::stipple(picture, face_pixel, 0xFFFFFF); });
  show([](Span picture) { kexlib::shift_down_right(picture); });
  show([&](Span picture) { kexlib::merge(picture, subject().data(), 0x000000); });
  show([&](Span picture) {
    kexlib::fill(picture, 0x102030);
    kexlib::merge(picture, subject().data(), face_pixel);
  });
  show([&](Span picture) { kexlib::draw_edge(picture, edge); });
  ASSERT_EQ(column, count);
  EXPECT_TRUE(sheet.save("pixel_effects"));

  TemporaryFolder folder;
  const HRSRC golden = FindResourceA(nullptr, MAKEINTRESOURCEA(IDR_EFFECTS), reinterpret_cast<LPCSTR>(RT_RCDATA));
  write_file("golden.png",
             {static_cast<const char*>(LockResource(LoadResource(nullptr, golden))), SizeofResource(nullptr, golden)});
  const DecodedImage expected = decode_image("golden.png");
  ASSERT_EQ(expected.width, size * count);
  ASSERT_EQ(expected.height, size);
  for (int y = 0; y < size; ++y)
    for (int x = 0; x < size * count; ++x)
      ASSERT_EQ(kexlib::pixel_of(sheet.at(x, y)),
                expected.pixels[static_cast<size_t>(y * size * count + x)] & kexlib::color_bits)
          << x << ", " << y;
}

// A picture of the effects, to look at.
TEST(Dib, TheEffectsLookAsTheyShould) {
  const DWORD face_pixel = system_pixel(COLOR_BTNFACE);
  const auto make = [&](Dib* dib) {
    dib->create(32, 32);
    dib->Fill(GetSysColor(COLOR_BTNFACE));
    for (int y = 8; y < 24; ++y)
      for (int x = 8; x < 24; ++x)
        dib->m_bits[y * 32 + x] = static_cast<DWORD>(x * 8) << 16 | static_cast<DWORD>(y * 8) << 8 | 0x40;
  };
  Picture picture(6 * 36 + 4, 40, GetSysColor(COLOR_BTNFACE));
  WTL::CDC dc(picture.dc());
  int x = 4;
  const auto show = [&](auto effect) {
    Dib dib;
    make(&dib);
    effect(dib);
    dib.copy_to_dc(&dc, x, 4);
    x += 36;
  };
  show([](Dib& dib) { dib.draw_button_edge(1, GetSysColor(COLOR_BTNFACE)); });
  show([](Dib& dib) {
    dib.down();
    dib.cool_stipple();
    dib.draw_button_edge(0, GetSysColor(COLOR_BTNFACE));
  });
  show([](Dib& dib) { dib.insensitive(GetSysColor(COLOR_BTNFACE)); });
  show([](Dib& dib) { dib.Color3Tint(0x500000, 0xAA0000, 0xFFFFFF, GetSysColor(COLOR_BTNFACE), 0); });
  show([](Dib& dib) { dib.draw_button_flat(kexEdgeRaised, GetSysColor(COLOR_BTNFACE)); });
  show([](Dib& dib) { dib.draw_button_flat(kexEdgeSunken, GetSysColor(COLOR_BTNFACE)); });
  dc.Detach();
  EXPECT_EQ(picture.at(4, 4), RGB(255, 255, 255));
  EXPECT_NE(picture.at(20, 20), face_pixel);
  EXPECT_TRUE(picture.save("dib_effects", 3));
}

}  // namespace
