// The line that names an object, in each code page with each decimal point.
#include <kexlib/text/tip_name.h>

#include <support/locale_matrix.h>

namespace {

using TipNameLocales = LocaleMatrix;

TEST_P(TipNameLocales, HaveTheBytesOfTheCodePageAndThePointOfTheRunTimeLibrary) {
  static int number = 7000000;  // no other test uses these
  const double a = ++number;    // its text is kept for the life of the process
  CComBSTR name(code_page().wide), sub_name(code_page().wide), unit(code_page().wide);
  const std::string narrow = code_page().narrow;
  const std::string text =
      atl_smart_tip_name_from_parts(name, 7, sub_name, a, a, unit, -2.5, true, true, true, true).GetString();
  const std::string shown = std::to_string(number) + point() + "0";
  EXPECT_EQ(text, narrow + " - " + narrow + " - 7 [ A=" + shown + " B=" + shown + " ] [ D -2" + point() + "5000 " +
                      narrow + " ]");
}

INSTANTIATE_LOCALE_MATRIX(TipNameLocales);

}  // namespace
