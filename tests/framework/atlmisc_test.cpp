// WTL's geometry is ATL's, in sources with WTL alone.
#include <gtest/gtest.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlmisc.h>

namespace {

TEST(WtlGeometry, IsAtGlobalScope) { EXPECT_EQ(::CRect(::CPoint(1, 2), ::CSize(3, 4)).Size(), ::CSize(3, 4)); }

}  // namespace
