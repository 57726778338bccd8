// WTL's geometry, in sources with WTL alone: ATL's since version 10.
#include <gtest/gtest.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlmisc.h>

namespace {

#if _WTL_VER >= 0x1000
TEST(WtlGeometry, IsAtGlobalScope) { EXPECT_EQ(::CRect(::CPoint(1, 2), ::CSize(3, 4)).Size(), ::CSize(3, 4)); }
#else
TEST(WtlGeometry, IsInWtl) { EXPECT_EQ(WTL::CRect(WTL::CPoint(1, 2), WTL::CSize(3, 4)).Size(), WTL::CSize(3, 4)); }
#endif

}  // namespace
