// Numbers with a fixed number of decimal places, with each decimal point.
#include <support/fixed_text.h>
#include <support/locale_matrix.h>

namespace {

using FixedTextLocales = LocaleMatrix;

TEST_P(FixedTextLocales, HaveThePointOfTheRunTimeLibrary) {
  EXPECT_EQ(std::string(kexlib::fixed_text(-1234567.125, 3)), "-1234567" + point() + "125");
  EXPECT_EQ(std::string(kexlib::fixed_text(1234567, 0)), "1234567");
  EXPECT_EQ(std::string(kexlib::fixed_text(0.5, 1080)).substr(0, 3), "0" + point() + "5");
}

INSTANTIATE_LOCALE_MATRIX(FixedTextLocales);

}  // namespace
