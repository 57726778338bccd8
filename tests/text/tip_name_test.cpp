// The line that names an object in a tool tip.
#include <gtest/gtest.h>

#include <kexlib/text/tip_name.h>

#include <clocale>
#include <limits>
#include <string>

namespace {

// All parts, and the flags that select them.
struct Parts {
  CComBSTR name = L"Left";
  long number = 3;
  CComBSTR sub_name = L"Upper";
  double a = 1.26;
  double b = 2;
  CComBSTR d_text = L"mm";
  double d = 0.5;
  bool show_ab = false;
  bool show_d = false;
  bool show_names = false;
  bool show_number = false;

  std::string text() {
    return atl_smart_tip_name_from_parts(name, number, sub_name, a, b, d_text, d, show_ab, show_d, show_names,
                                         show_number)
        .GetString();
  }
};

TEST(TipName, HasAllParts) {
  Parts parts{.show_ab = true, .show_d = true, .show_names = true, .show_number = true};
  EXPECT_EQ(parts.text(), "Left - Upper - 3 [ A=1.3 B=2.0 ] [ D 0.5000 mm ]");
}

TEST(TipName, IsABlankWithoutAny) { EXPECT_EQ(Parts{}.text(), " "); }

TEST(TipName, ShowsTheNamesThatThereAre) {
  const std::pair<std::pair<const wchar_t*, const wchar_t*>, const char*> expected[] = {
      {{L"Left", L"Upper"}, "Left - Upper "},
      {{L"Left", L""}, "Left "},
      {{L"", L"X"}, "X "},
      {{L"", L""}, " "},
      {{nullptr, L"X"}, "X "},
      {{L"Left", nullptr}, "Left "},
      {{nullptr, nullptr}, " "},
      {{L"A - B", L" C "}, "A - B -  C  "}};
  for (const auto& [names, text] : expected) {
    Parts parts{.name = names.first, .sub_name = names.second, .show_names = true};
    EXPECT_EQ(parts.text(), text);
  }
}

// By design the separator is shown without a name, too: callers append the result to a heading.
TEST(TipName, ShowsTheNumberBehindASeparator) {
  EXPECT_EQ((Parts{.number = 7, .show_number = true}.text()), " - 7 ");
  EXPECT_EQ((Parts{.number = -7, .show_names = true, .show_number = true}.text()), "Left - Upper - -7 ");
  EXPECT_EQ((Parts{.number = std::numeric_limits<long>::min(), .show_number = true}.text()), " - -2147483648 ");
}

TEST(TipName, ShowsAAndBWithOneDecimal) {
  EXPECT_EQ((Parts{.show_ab = true}.text()), " [ A=1.3 B=2.0 ]");
  EXPECT_EQ((Parts{.a = -3.14159, .b = 1e9, .show_ab = true}.text()), " [ A=-3.1 B=1000000000.0 ]");
}

TEST(TipName, TakesBothZerosAsOne) {
  EXPECT_EQ((Parts{.a = 0.0, .b = -0.0, .show_ab = true}.text()), " [ A=0.0 B=0.0 ]");
  EXPECT_EQ((Parts{.a = -0.0, .show_ab = true}.text()), " [ A=0.0 B=2.0 ]");
}

TEST(TipName, ShowsAAndBAsTheyWereFirstShown) {
  Parts parts{.a = 77.5, .b = 77.5, .d = 77.5, .show_ab = true, .show_d = true};
  parts.text();
  ASSERT_NE(std::setlocale(LC_NUMERIC, "German"), nullptr);
  const std::string text = parts.text();
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(text, " [ A=77.5 B=77.5 ] [ D 77,5000 mm ]");
}

TEST(TipName, ShowsDWithFourDecimalsAndItsUnit) {
  EXPECT_EQ((Parts{.d = 1.23456, .show_d = true}.text()), "  [ D 1.2346 mm ]");
  EXPECT_EQ((Parts{.d_text = L"", .d = -1, .show_d = true}.text()), "  [ D -1.0000  ]");
  EXPECT_EQ((Parts{.d_text = {}, .d = 1, .show_d = true}.text()), "  [ D 1.0000 (null) ]");
  EXPECT_EQ((Parts{.d = std::numeric_limits<double>::infinity(), .show_d = true}.text()), "  [ D inf mm ]");
  EXPECT_EQ((Parts{.d = 1e300, .show_d = true}.text().size()), 2 + 4 + 301 + 5 + 5u);
}

TEST(TipName, IsInTheCodePageOfTheThread) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(0x0409);
  const std::string western = Parts{.name = L"Gr\u00f6\u00dfe", .sub_name = L"x\u0434", .show_names = true}.text();
  SetThreadLocale(0x0419);
  const std::string russian = Parts{.name = L"", .sub_name = L"x\u0434", .show_names = true}.text();
  SetThreadLocale(0x0411);
  const std::string japanese = Parts{.name = L"\u30bd", .d_text = L"\u8868", .show_d = true, .show_names = true}.text();
  SetThreadLocale(before);
  EXPECT_EQ(western,
            "Gr\xf6\xdf"
            "e - x? ");
  EXPECT_EQ(russian, "x\xe4 ");
  EXPECT_EQ(japanese, "\x83\x5c - Upper  [ D 0.5000 \x95\x5c ]");
}

TEST(TipName, NarrowsAsTheFrameworkDoes) {
  for (const wchar_t* text : {L"plain", L"\u00e4", L"a\u00e4", L"\u30bd and more"})
    EXPECT_EQ((Parts{.name = text, .sub_name = {}, .show_names = true}.text()), std::string(CW2A(text)) + " ") << text;
}

TEST(TipName, ReadsItsTextsOnly) {
  Parts parts{.show_ab = true, .show_d = true, .show_names = true, .show_number = true};
  parts.text();
  EXPECT_STREQ(parts.name, L"Left");
  EXPECT_STREQ(parts.sub_name, L"Upper");
  EXPECT_STREQ(parts.d_text, L"mm");
}

TEST(TipName, TakesLongNames) {
  Parts parts{.name = CComBSTR(std::wstring(100000, L'x').c_str()), .show_names = true};
  EXPECT_EQ(parts.text(), std::string(100000, 'x') + " - Upper ");
}

}  // namespace
