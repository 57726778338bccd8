// A source with MFC: what CString is there, in whatever namespace.
#include <gtest/gtest.h>

#include <afx.h>
#include <atlstr.h>

#include <framework/resources.h>

#include <type_traits>

namespace {

static_assert(std::is_same_v<CString, ATL::CStringT<char, StrTraitMFC_DLL<char>>>);
static_assert(std::is_same_v<CStringW, ATL::CStringT<wchar_t, StrTraitMFC_DLL<wchar_t>>>);
static_assert(!std::is_same_v<CString, ATL::CStringT<char, ATL::StrTraitATL<char>>>, "exported names differ");

TEST(MfcString, IsLoadedFromTheResourcesOfTheModuleState) {
  CString text;
  EXPECT_TRUE(text.LoadString(IDS_FIRST));
  EXPECT_STREQ(text, "first");
}

}  // namespace
