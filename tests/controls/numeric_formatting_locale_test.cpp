// Numbers as text and back, in each code page with each decimal point.
#include <kexlib/controls/numeric_formatting.h>

#include <controls/formatting.h>
#include <support/locale_matrix.h>

namespace {

using Numbers = kexNumericFormatting;

using NumericFormattingLocales = LocaleMatrix;

TEST_P(NumericFormattingLocales, FormatWithThePointOfTheRunTimeLibrary) {
  Formatting formatting(2, 4, KRV_Inches, KRV_Millimetres);
  EXPECT_EQ(formatting.plain(1234567.125), "1234567" + point() + "13");
  EXPECT_EQ(formatting.with_units(1.0), "25" + point() + "40");
  EXPECT_EQ(formatting.neutral(-0.5), "-0" + point() + "5000");
}

TEST_P(NumericFormattingLocales, WriteAndReadWithTheSeparatorThatIsGiven) {
  WTL::CEditT<CWindow> edit(
      CreateWindowExA(0, "EDIT", "", WS_POPUP | ES_AUTOHSCROLL, 0, 0, 100, 20, nullptr, nullptr, nullptr, nullptr));
  for (const std::string& separator : {std::string("."), std::string(","), std::string(code_page().narrow)}) {
    EXPECT_EQ(std::string(Numbers::putValue(&edit, -1234567.125, separator.c_str(), 3)),
              "-1234567" + separator + "125");
    EXPECT_EQ(Numbers::getValue(&edit, separator.c_str()), -1234567.125);
    EXPECT_EQ(Numbers::getValue(&edit, false, separator.c_str()), 1234567.125);
  }
  SetWindowTextA(edit, "1.5e3");
  EXPECT_EQ(Numbers::getValue(&edit, ","), 1500);
  edit.DestroyWindow();
}

TEST_P(NumericFormattingLocales, AskTheUserForTheSeparatorAndNotTheRunTimeLibrary) {
  char users[8];
  ASSERT_GT(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, users, sizeof users), 0);
  EXPECT_STREQ(Numbers::get_decimal_seperator(), users);
}

INSTANTIATE_LOCALE_MATRIX(NumericFormattingLocales);

}  // namespace
