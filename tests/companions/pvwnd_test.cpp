// pvwnd: the off-screen bitmap.
#include <gtest/gtest.h>

#include <pvwnd/window_dib.h>
#include <support/resource_counts.h>

#include <utility>

namespace {

TEST(PvWindowDib, IsASectionOfThirtyTwoBitsThatCanBeDrawnInto) {
  pvDIBStatus status = pvDIB_failed;
  pvWindowDIB window(6, 4, pvDIB_default, status, nullptr);
  EXPECT_EQ(status, pvDIB_made);
  DIBSECTION section{};
  ASSERT_EQ(GetObjectA(window.bitmap(), sizeof section, &section), static_cast<int>(sizeof section));
  EXPECT_EQ(section.dsBm.bmWidth, 6);
  EXPECT_EQ(section.dsBm.bmHeight, 4);
  EXPECT_EQ(section.dsBm.bmBitsPixel, 32);
  EXPECT_EQ(GetPixel(window.hdc(), 5, 3), 0u);
  EXPECT_NE(SetPixel(window.hdc(), 5, 3, RGB(1, 2, 3)), CLR_INVALID);
  EXPECT_EQ(GetPixel(window.hdc(), 5, 3), RGB(1, 2, 3));
}

TEST(PvWindowDib, ImpossibleSizesGiveNoBitmap) {
  for (auto [width, height] : {std::pair{0, 4}, {4, 0}, {-1, 4}, {4, -1}}) {
    pvDIBStatus status = pvDIB_made;
    pvWindowDIB window(width, height, pvDIB_default, status, nullptr);
    EXPECT_EQ(status, pvDIB_failed);
    EXPECT_EQ(window.bitmap(), nullptr);
    EXPECT_NE(window.hdc(), nullptr);
  }
}

TEST(PvWindowDib, LeavesNothingBehind) {
  const auto round = [](int width) {
    pvDIBStatus status;
    pvWindowDIB window(width, 4, pvDIB_default, status, nullptr);
  };
  round(4);
  const ResourceCounts before;
  for (int i = 0; i < 100; ++i) round(i % 5);
  EXPECT_EQ(ResourceCounts(), before);
}

}  // namespace
