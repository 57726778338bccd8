// kexWTLDIB: pictures from resources, files and bitmaps, and into bitmaps.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <imaging/dib_fixture.h>
#include <imaging/resources.h>
#include <support/files.h>
#include <support/import_override.h>

#include <string>

namespace {

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

TEST(Dib, ADamagedResourceLeavesThePictureThatWas) {
  Dib dib(1, {X});
  EXPECT_EQ(dib.load_bitmap(IDB_DAMAGED, GetModuleHandle(nullptr)), 0);
  EXPECT_EQ(dib.load_bitmap_transparent(IDB_DAMAGED, GetModuleHandle(nullptr), substitute), 0);
  EXPECT_EQ(dib.pixels(), Pixels{X});
}

TEST(Dib, TheColorsOfAResourceWithAlphaAreLoadedAsTheyAre) {
  Dib dib;
  EXPECT_EQ(dib.load_bitmap(IDB_ALPHA, GetModuleHandle(nullptr)), 1);
  EXPECT_EQ(dib.pixels(), (Pixels{0x80400000, 0xFF00FF00, 0x000000FF, 0xC0C00000}));
}

TEST(Dib, ABitmapOfTheKeyAloneIsBlank) {
  Dib dib;
  EXPECT_EQ(dib.load_bitmap_transparent(IDB_MAGENTA, GetModuleHandle(nullptr), substitute), 1);
  EXPECT_EQ(dib.pixels(), Pixels{S});
  EXPECT_EQ(dib.is_blank(), 1);
  EXPECT_EQ(dib.m_state, 1);
  EXPECT_EQ(dib.load_bitmap(IDB_ONE_BIT, GetModuleHandle(nullptr)), 1);
  EXPECT_EQ(dib.is_blank(), 1);  // only a substitution changes the result
  dib.UpdateSubstituteBits(substitute);
  EXPECT_EQ(dib.is_blank(), 0);
  EXPECT_EQ(dib.m_state, 2);
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

int reads = 0;
int WINAPI count_read(HDC dc, HBITMAP bitmap, UINT first, UINT lines, void* bits, BITMAPINFO* info, UINT usage) {
  ++reads;
  return GetDIBits(dc, bitmap, first, lines, bits, info, usage);
}

TEST(Dib, WithoutASectionForItsSizeNothingIsReadFromABitmap) {
  WTL::CBitmap bitmap;
  make_bitmap(&bitmap, 2, {1, 2, 3, 4});
  const ImportOverride refuse("kexlib.dll", "gdi32.dll", "CreateDIBSection", no_section);
  const ImportOverride read("kexlib.dll", "gdi32.dll", "GetDIBits", count_read);
  ASSERT_TRUE(refuse.made() && read.made());
  reads = 0;
  Dib dib;
  EXPECT_EQ(dib.set_bitmap(&bitmap), 0);
  EXPECT_EQ(reads, 0);
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
  ImportOverride release("kexlib.dll", "user32.dll", "ReleaseDC", count_release);
  ASSERT_TRUE(release.made());
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

}  // namespace
