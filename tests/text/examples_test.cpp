// The examples of the guide's page.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/framework.h>

#include <atlbase.h>

#include <support/files.h>
#include <support/string_table.h>

#include <algorithm>
#include <string>
#include <vector>

bool find_sources(const char* folder, std::vector<std::string>& sources);
CString file_name_of(CString title);
ATL::CComBSTR localized(HINSTANCE module, UINT base_id, const wchar_t* text);
CStringA tip_of_an_edge();
ATL::CComVariant identifier_for_tests(const VARIANT& configured, const wchar_t* name);

namespace {

TEST(TextExamples, FindSources) {
  const TemporaryFolder folder;
  for (const char* name : {"build", "src"}) std::filesystem::create_directory(name);
  for (const char* name : {"main.cpp", "src/part.H", "src/part.txt", "build/made.cpp"}) write_file(name, "");
  std::vector<std::string> sources;
  EXPECT_TRUE(find_sources(folder.path().string().c_str(), sources));
  std::sort(sources.begin(), sources.end());
  EXPECT_EQ(sources, (std::vector<std::string>{(folder.path() / "main.cpp").string(),
                                               (folder.path() / "src" / "part.H").string()}));
  EXPECT_FALSE(find_sources((folder.path() / "none").string().c_str(), sources));
}

TEST(TextExamples, TheSearchForSourcesStops) {
  const TemporaryFolder folder;
  for (int i = 0; i < 1001; ++i) write_file(std::to_string(i) + ".h", "");
  std::vector<std::string> sources;
  EXPECT_TRUE(find_sources(folder.path().string().c_str(), sources));
  EXPECT_EQ(sources.size(), 1000u);
}

TEST(TextExamples, MakeAFileName) { EXPECT_EQ(file_name_of("report: 1/2"), "report_ 1_2.txt"); }

TEST(TextExamples, Localize) {
  const HMODULE texts = LoadLibraryA("string_table.dll");
  ASSERT_NE(texts, nullptr);
  EXPECT_STREQ(localized(texts, IDS_BASE, L"{5}Open file"), L"the fifth");
  EXPECT_STREQ(localized(texts, IDS_BASE, L"{6}Open file"), L"Open file");
  FreeLibrary(texts);
}

TEST(TextExamples, ComposeATip) { EXPECT_EQ(tip_of_an_edge(), "Left - Upper - 3 [ A=1.3 B=2.0 ] [ D 0.5000 mm ]"); }

TEST(TextExamples, IdentifyAnObject) {
  const ATL::CComVariant named = identifier_for_tests(ATL::CComVariant(L"auto"), L"door");
  ASSERT_EQ(named.vt, VT_BSTR);
  EXPECT_STREQ(named.bstrVal, L"door");
  const ATL::CComVariant numbered = identifier_for_tests(ATL::CComVariant(7), L"door");
  ASSERT_EQ(numbered.vt, VT_I4);
  EXPECT_EQ(numbered.lVal, 7);
  EXPECT_EQ(identifier_for_tests(ATL::CComVariant(), L"door").vt, VT_EMPTY);
}

}  // namespace
