// kexWTLDIB: its bitmap and device context, copies, and leaks.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <imaging/dib_fixture.h>
#include <imaging/resources.h>
#include <support/import_override.h>
#include <support/picture.h>
#include <support/resource_counts.h>

#include <cstring>
#include <utility>

namespace {

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

TEST(Dib, ANewPictureHasADescriptionOfItsOwn) {
  Dib dib;
  std::memset(&dib.m_bmi, 0xFF, sizeof dib.m_bmi);
  ASSERT_EQ(dib.create(5, 3), 1);
  const BITMAPINFOHEADER& header = dib.m_bmi.bmiHeader;
  EXPECT_EQ(header.biXPelsPerMeter, 0);
  EXPECT_EQ(header.biYPelsPerMeter, 0);
  EXPECT_EQ(header.biClrUsed, 0u);
  EXPECT_EQ(header.biClrImportant, 0u);
  const RGBQUAD& color = dib.m_bmi.bmiColors[0];
  EXPECT_EQ(RGB(color.rgbRed, color.rgbGreen, color.rgbBlue), 0u);
  EXPECT_EQ(color.rgbReserved, 0);
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
  EXPECT_EQ(dib.is_blank(), 1);  // an empty picture has no other pixel than the key
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
    auto* copy = new (memory) Dib(dib);  // never destroyed: it would release the handles of the source
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
  dib.m_dc = nullptr;  // so that only one of the two releases it
  dib.m_bitmap = nullptr;
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
  dib.copy_to_dc(nullptr, 1, 1);
  dc.Detach();
  EXPECT_EQ(picture.at(0, 0), RGB(9, 9, 9));
  EXPECT_EQ(picture.at(1, 1), RGB(255, 0, 0));
  EXPECT_EQ(picture.at(2, 1), RGB(255, 255, 255));
  EXPECT_EQ(picture.at(1, 2), RGB(0, 0, 255));
  EXPECT_EQ(picture.at(2, 2), RGB(0, 255, 0));
  EXPECT_EQ(picture.at(3, 3), RGB(9, 9, 9));
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

}  // namespace
