// File names and texts in the user's language, in each code page.
#include <kexlib/text/text_helpers.h>

#include <support/locale_matrix.h>
#include <support/string_table.h>

namespace {

using TextHelpersLocales = LocaleMatrix;

TEST_P(TextHelpersLocales, ReplaceWhatIsForbiddenAndKeepWholeCharacters) {
  const std::string narrow = code_page().narrow;
  CString name((narrow + "\\*" + narrow + "|").c_str());
  CString path(name);
  kex_replace_forbidden_symbols_strict(name, '_');
  kex_replace_forbidden_symbols(path, '_');
  EXPECT_EQ(std::string(name), narrow + "__" + narrow + "_");
  EXPECT_EQ(std::string(path), narrow + "\\_" + narrow + "_");
}

TEST_P(TextHelpersLocales, GiveATextBack) {
  const HINSTANCE strings = LoadLibraryA("string_table.dll");
  ASSERT_NE(strings, nullptr);
  const std::wstring wide = code_page().wide;
  for (const std::wstring& text : {wide, L"{6}" + wide, L"{" + wide + L"}" + wide}) {
    CComBSTR result;
    EXPECT_EQ(kexLocalizeString(strings, IDS_BASE, CComVariant(text.c_str()), &result), S_FALSE);
    EXPECT_EQ(std::wstring(result, result.Length()), wide);
  }
  CComBSTR found;
  EXPECT_EQ(kexLocalizeString(strings, IDS_BASE, CComVariant((L"{ 5}" + wide).c_str()), &found), S_OK);
  EXPECT_STREQ(found, L"the fifth");
  FreeLibrary(strings);
}

INSTANTIATE_LOCALE_MATRIX(TextHelpersLocales);

}  // namespace
