// Sizes, points and rectangles.
#include <gtest/gtest.h>

#include <atltypes.h>

namespace {

TEST(Geometry, BeginsAtZero) {
  EXPECT_EQ(CSize(), CSize(0, 0));
  EXPECT_EQ(CPoint(), CPoint(0, 0));
  EXPECT_EQ(CRect(), CRect(0, 0, 0, 0));
}

TEST(Geometry, IsMadeFromWhatTheSystemGives) {
  SIZE size{3, 4};
  POINT point{-1, 2};
  RECT rect{1, 2, 30, 40};
  EXPECT_EQ(CSize(size), CSize(3, 4));
  EXPECT_EQ(CPoint(point), CPoint(-1, 2));
  EXPECT_EQ(CRect(rect), CRect(1, 2, 30, 40));
  EXPECT_EQ(CRect(point, size), CRect(-1, 2, 2, 6));
}

TEST(Geometry, DiffersInAnyPart) {
  EXPECT_FALSE(CSize(1, 2) == CSize(1, 3));
  EXPECT_FALSE(CSize(1, 2) == CSize(2, 2));
  EXPECT_FALSE(CPoint(1, 2) == CPoint(1, 3));
  EXPECT_FALSE(CPoint(1, 2) == CPoint(2, 2));
  EXPECT_FALSE(CRect(1, 2, 3, 4) == CRect(1, 2, 3, 5));
  EXPECT_NE(CSize(1, 2), CSize(1, 3));
  EXPECT_NE(CPoint(1, 2), CPoint(1, 3));
  EXPECT_NE(CRect(1, 2, 3, 4), CRect(1, 2, 3, 5));
  EXPECT_FALSE(CSize(1, 2) != CSize(1, 2));
  EXPECT_FALSE(CPoint(1, 2) != CPoint(1, 2));
  EXPECT_FALSE(CRect(1, 2, 3, 4) != CRect(1, 2, 3, 4));
}

TEST(Rect, KnowsItsSizeAndItsPlaces) {
  CRect rect(10, 20, 15, 26);
  EXPECT_EQ(rect.Width(), 5);
  EXPECT_EQ(rect.Height(), 6);
  EXPECT_EQ(rect.Size(), CSize(5, 6));
  EXPECT_EQ(rect.CenterPoint(), CPoint(12, 23));
}

TEST(Rect, ContainsItsTopLeftAndNotItsBottomRight) {
  CRect rect(10, 20, 15, 26);
  EXPECT_TRUE(rect.PtInRect({10, 20}));
  EXPECT_TRUE(rect.PtInRect({14, 25}));
  EXPECT_FALSE(rect.PtInRect({15, 25}));
  EXPECT_FALSE(rect.PtInRect({14, 26}));
  EXPECT_FALSE(rect.PtInRect({9, 20}));
}

TEST(Rect, GrowsShrinksAndMoves) {
  CRect rect(10, 20, 30, 40);
  rect.InflateRect(1, 2);
  EXPECT_EQ(rect, CRect(9, 18, 31, 42));
  rect.DeflateRect(2, 4);
  EXPECT_EQ(rect, CRect(11, 22, 29, 38));
  rect.OffsetRect(-11, 3);
  EXPECT_EQ(rect, CRect(0, 25, 18, 41));
}

TEST(Rect, IsWhatTheSystemsFunctionsTake) {
  CRect rect;
  ::SetRect(rect, 1, 2, 3, 4);
  const CRect& same = rect;
  EXPECT_FALSE(::IsRectEmpty(same));
  EXPECT_EQ(rect, CRect(1, 2, 3, 4));
}

}  // namespace
