// kexWTLImageList: a real image list, read back by drawing, and its creation parameters.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/imaging/dib.h>
#include <kexlib/imaging/image_list.h>

#include <imaging/resources.h>
#include <support/import_override.h>
#include <support/picture.h>
#include <support/resource_counts.h>

#include <climits>
#include <vector>

namespace {

using Colors = std::vector<COLORREF>;  // from the upper left

constexpr COLORREF mask = RGB(0x12, 0x34, 0x56), behind = RGB(200, 100, 50);
constexpr int size = 4;

HINSTANCE module() { return GetModuleHandle(nullptr); }

Colors drawn(const kexWTLImageList& list, int image, UINT style = ILD_TRANSPARENT, COLORREF background = behind) {
  Picture picture(size, size, background);
  EXPECT_TRUE(ImageList_Draw(list, image, picture.dc(), 0, 0, style));
  Colors colors;
  for (int y = 0; y < size; ++y)
    for (int x = 0; x < size; ++x) colors.push_back(picture.at(x, y));
  return colors;
}

COLORREF exchanged(DWORD pixel) { return RGB(GetBValue(pixel), GetGValue(pixel), GetRValue(pixel)); }

// The square resource as drawn, with a change applied to each colour except the key.
template <typename Change>
Colors square(Change change) {
  Colors colors{0x000000, 0xFF0000, 0x00FF00, 0x0000FF,  //
                behind,   0xC0C0C0, 0x404040, behind,    //
                0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF,  //
                behind,   0x000000, 0x808080, 0x806040};
  for (COLORREF& color : colors)
    if (color != behind) color = change(color);
  return colors;
}

COLORREF tinted(COLORREF color, COLORREF dark, COLORREF mid) {
  return exchanged(kexWTLDIB::TintColor(exchanged(color), dark, mid, 0xFFFFFF));
}

class ImageList : public testing::Test {
 protected:
  ~ImageList() override { list.Destroy(); }

  kexWTLImageList list{size, mask};
};

TEST_F(ImageList, BeginsWithoutAList) {
  EXPECT_TRUE(list.IsNull());
  EXPECT_EQ(static_cast<HIMAGELIST>(list), nullptr);
  EXPECT_EQ(list.GetImageCount(), 0);
  EXPECT_EQ(list.Destroy(), 0);
  EXPECT_TRUE(list.Add(IDB_SQUARE, module(), kexImageNormal));  // nothing is added, which is not reported
}

TEST_F(ImageList, IsMadeEmptyWithSquarePictures) {
  EXPECT_TRUE(list.Create());
  EXPECT_FALSE(list.IsNull());
  EXPECT_EQ(list.GetImageCount(), 0);
  int width = 0, height = 0;
  EXPECT_TRUE(ImageList_GetIconSize(list, &width, &height));
  EXPECT_EQ(width, size);
  EXPECT_EQ(height, size);
}

int list_width, list_height, list_initial, list_grow;
UINT list_flags;
HIMAGELIST WINAPI note_list(int width, int height, UINT flags, int initial, int grow) {
  list_width = width;
  list_height = height;
  list_flags = flags;
  list_initial = initial;
  list_grow = grow;
  return ImageList_Create(width, height, flags, initial, grow);
}

TEST_F(ImageList, IsMadeOfThirtyTwoBitsWithAMaskForSixteenPicturesAndFourMoreAtATime) {
  const ImportOverride create("kexlib.dll", "comctl32.dll", "ImageList_Create", note_list);
  ASSERT_TRUE(create.made());
  EXPECT_TRUE(list.Create());
  EXPECT_EQ(list_width, size);
  EXPECT_EQ(list_height, size);
  EXPECT_EQ(list_flags, UINT{ILC_COLOR32 | ILC_MASK});
  EXPECT_EQ(list_initial, 16);
  EXPECT_EQ(list_grow, 4);
}

TEST_F(ImageList, IsDestroyedOnce) {
  ASSERT_TRUE(list.Create());
  EXPECT_EQ(list.Destroy(), 1);
  EXPECT_TRUE(list.IsNull());
  EXPECT_EQ(list.Destroy(), 0);
}

TEST_F(ImageList, OutlivesItsObject) {
  HIMAGELIST handle;
  {
    kexWTLImageList other(size, mask);
    ASSERT_TRUE(other.Create());
    handle = other;
  }
  EXPECT_EQ(ImageList_GetImageCount(handle), 0);
  EXPECT_TRUE(ImageList_Destroy(handle));
}

TEST_F(ImageList, ThePlainPictureIsAsLoadedAndItsKeyIsTransparent) {
  ASSERT_TRUE(list.Create());
  EXPECT_TRUE(list.Add(IDB_SQUARE, module(), kexImageNormal));
  EXPECT_TRUE(list.Add(IDB_SQUARE, module(), static_cast<kexImageType>(3)));
  ASSERT_EQ(list.GetImageCount(), 2);
  EXPECT_EQ(drawn(list, 0), square([](COLORREF color) { return color; }));
  EXPECT_EQ(drawn(list, 1), drawn(list, 0));
}

TEST_F(ImageList, TheDisabledPictureGoesFromShadowOverFaceToWhite) {
  ASSERT_TRUE(list.Create());
  EXPECT_TRUE(list.Add(IDB_SQUARE, module(), kexImageDisabled));
  EXPECT_EQ(drawn(list, 0), square([](COLORREF color) {
              return tinted(color, GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_BTNFACE));
            }));
}

TEST_F(ImageList, TheTintedPictureGoesFromDarkBlueOverBlueToWhite) {
  ASSERT_TRUE(list.Create());
  EXPECT_TRUE(list.Add(IDB_SQUARE, module(), kexImageTinted));
  EXPECT_EQ(drawn(list, 0), square([](COLORREF color) { return tinted(color, 0x500000, 0xAA0000); }));
  EXPECT_EQ(drawn(list, 0)[0], RGB(0, 0, 0x50));
}

TEST_F(ImageList, TheMaskIsWhiteWhereTheKeyWas) {
  ASSERT_TRUE(list.Create());
  for (kexImageType type : {kexImageNormal, kexImageDisabled, kexImageTinted}) {
    EXPECT_TRUE(list.Add(IDB_SQUARE, module(), type));
    const Colors mask_colors = drawn(list, static_cast<int>(type), ILD_MASK, 0xFFFFFF);
    for (size_t i = 0; i < mask_colors.size(); ++i)
      EXPECT_EQ(mask_colors[i], i == 4 || i == 7 || i == 12 ? 0xFFFFFFu : 0u) << type << ", " << i;
  }
}

TEST_F(ImageList, AMissingResourceIsTheOnlyFailureThatIsTold) {
  ASSERT_TRUE(list.Create());
  EXPECT_FALSE(list.Add(IDB_MISSING, module(), kexImageNormal));
  EXPECT_EQ(list.GetImageCount(), 0);
  EXPECT_TRUE(list.Add(IDB_ONE_BIT, module(), kexImageNormal));  // four by two
  EXPECT_EQ(list.GetImageCount(), 1);
}

TEST_F(ImageList, APictureBecomesAnOverlay) {
  ASSERT_TRUE(list.Create());
  EXPECT_TRUE(list.Add(IDB_SQUARE, module(), kexImageNormal));
  EXPECT_EQ(list.SetOverlayImage(0, 1), 1);
  EXPECT_EQ(list.SetOverlayImage(5, 1), 0);
}

TEST_F(ImageList, HoldsMorePicturesThanItIsMadeFor) {
  ASSERT_TRUE(list.Create());
  for (int i = 0; i < 40; ++i) ASSERT_TRUE(list.Add(IDB_SQUARE, module(), kexImageNormal));
  EXPECT_EQ(list.GetImageCount(), 40);
  EXPECT_EQ(drawn(list, 39), drawn(list, 0));
}

TEST_F(ImageList, TakesNoHarmFromSizesAndNumbersThatMakeNoSense) {
  for (const int odd : {0, -1, INT_MIN}) {
    kexWTLImageList none(odd, mask);
    EXPECT_FALSE(none.Create()) << odd;
    EXPECT_TRUE(none.IsNull());
    EXPECT_TRUE(none.Add(IDB_SQUARE, module(), kexImageNormal));  // only a failed load is reported
    EXPECT_EQ(none.GetImageCount(), 0);
    EXPECT_EQ(none.SetOverlayImage(0, 1), 0);
    EXPECT_EQ(none.Destroy(), 0);
  }
  ASSERT_TRUE(list.Create());
  EXPECT_TRUE(list.Add(IDB_SQUARE, module(), static_cast<kexImageType>(INT_MIN)));
  EXPECT_EQ(drawn(list, 0), square([](COLORREF color) { return color; }));
  for (const int overlay : {INT_MIN, -1, 0, 16, INT_MAX}) EXPECT_EQ(list.SetOverlayImage(0, overlay), 0) << overlay;
  EXPECT_NE(list.SetOverlayImage(0, 1), 0);
  EXPECT_EQ(list.GetImageCount(), 1);
}

TEST_F(ImageList, RoundsLeaveNothingBehind) {
  const auto round = [] {
    kexWTLImageList other(size, mask);
    other.Create();
    for (kexImageType type : {kexImageNormal, kexImageDisabled, kexImageTinted}) other.Add(IDB_SQUARE, module(), type);
    other.Add(IDB_MISSING, module(), kexImageNormal);
    other.Destroy();
  };
  round();
  const ResourceCounts before;
  for (int i = 0; i < 100; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
