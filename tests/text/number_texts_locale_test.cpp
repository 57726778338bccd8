// Numbers with one decimal, with each decimal point.
#include <support/locale_matrix.h>
#include <text/number_texts.h>

namespace {

using NumberTextsLocales = LocaleMatrix;

TEST_P(NumberTextsLocales, KeepThePointThatTheyWereMadeWith) {
  kexlib::NumberTexts texts;
  EXPECT_EQ(std::string(texts.text(1234.5)), "1234" + point() + "5");
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(std::string(texts.text(1234.5)), "1234" + point() + "5");
  EXPECT_EQ(std::string(texts.text(0.5)), "0.5");
}

INSTANTIATE_LOCALE_MATRIX(NumberTextsLocales);

}  // namespace
