// Everything that converts text, in each code page with each decimal point.
//
//     using TipNameLocales = LocaleMatrix;
//     TEST_P(TipNameLocales, ...) { ... code_page().narrow ... point() ... }
//     INSTANTIATE_LOCALE_MATRIX(TipNameLocales);
#ifndef TESTS_SUPPORT_LOCALE_MATRIX_H
#define TESTS_SUPPORT_LOCALE_MATRIX_H

#include <gtest/gtest.h>

#include <kexlib/framework.h>

#include <mbctype.h>

#include <clocale>
#include <ostream>
#include <string>
#include <tuple>

// A code page, a language that brings it, and a text that has its own characters.
struct CodePage {
  UINT number;
  LCID language;
  const char* characters;  // the locale of the run-time library; null if it has none
  const wchar_t* wide;
  const char* narrow;  // 932: both trail bytes are backslashes

  friend std::ostream& operator<<(std::ostream& out, const CodePage& page) { return out << page.number; }
};
constexpr CodePage western{1252, 0x0409, "English", L"Gr\u00f6\u00dfe", "Gr\xf6\xdf\x65"};
constexpr CodePage cyrillic{1251, 0x0419, "Russian", L"\u0434\u044f", "\xe4\xff"};
constexpr CodePage japanese{932, 0x0411, "Japanese", L"\u30bd\u8868", "\x83\x5c\x95\x5c"};
// A language without a code page: Wine takes UTF-8 for it.
constexpr CodePage utf8{65001, 0x0439, nullptr, L"\u00e4\u8868", "\xc3\xa4\xe8\xa1\xa8"};

// Sets a row of the matrix for the run-time library, the thread, and the functions for several bytes a character.
class LocaleMatrix : public testing::TestWithParam<std::tuple<const char*, CodePage>> {
 protected:
  void SetUp() override {
    ASSERT_NE(std::setlocale(LC_NUMERIC, std::get<0>(GetParam())), nullptr);
    if (code_page().characters) {
      ASSERT_NE(std::setlocale(LC_CTYPE, code_page().characters), nullptr);
    }
    ASSERT_EQ(_setmbcp(static_cast<int>(code_page().number)), 0);
    ASSERT_TRUE(SetThreadLocale(code_page().language));
    CPINFOEXA info;
    ASSERT_TRUE(GetCPInfoExA(CP_THREAD_ACP, 0, &info));
    if (code_page().number == utf8.number && info.CodePage != utf8.number)
      GTEST_SKIP() << "this system has no language with UTF-8";
    ASSERT_EQ(info.CodePage, code_page().number);
  }

  void TearDown() override {
    SetThreadLocale(before_);
    _setmbcp(_MB_CP_ANSI);
    std::setlocale(LC_ALL, "C");
  }

  static const CodePage& code_page() { return std::get<1>(GetParam()); }

  // The decimal point of the run-time library: a comma in German.
  static std::string point() { return *std::get<0>(GetParam()) == 'G' ? "," : "."; }

 private:
  const LCID before_ = GetThreadLocale();
};

#define INSTANTIATE_LOCALE_MATRIX(suite)                                                                    \
  INSTANTIATE_TEST_SUITE_P(                                                                                 \
      Each, suite,                                                                                          \
      testing::Combine(testing::Values("C", "German"), testing::Values(western, cyrillic, japanese, utf8)), \
      [](const auto& row) {                                                                                 \
        return std::get<0>(row.param) + std::string("_") + std::to_string(std::get<1>(row.param).number);   \
      })

#endif
