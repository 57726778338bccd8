// A source without MFC: what AtlThrow throws there, and what CString is.
#include <gtest/gtest.h>

#include <atlstr.h>

#include <framework/resources.h>

#include <type_traits>

namespace {

static_assert(std::is_same_v<CString, ATL::CStringT<char, ATL::StrTraitATL<char>>>);
static_assert(std::is_same_v<CStringW, ATL::CStringT<wchar_t, ATL::StrTraitATL<wchar_t>>>);

TEST(WithoutMfc, AtlThrowThrowsTheCodeByValue) {
  HRESULT thrown = S_OK;
  try {
    AtlThrow(E_OUTOFMEMORY);
  } catch (const CAtlException& exception) {
    thrown = exception;
  }
  EXPECT_EQ(thrown, E_OUTOFMEMORY);
}

TEST(WithoutMfc, AStringIsLoadedFromTheModule) {
  CString text;
  EXPECT_TRUE(text.LoadString(IDS_FIRST));
  EXPECT_STREQ(text, "first");
  EXPECT_FALSE(text.LoadString(IDS_FAR));
}

}  // namespace
