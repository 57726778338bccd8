// Narrow text widened, in each code page.
#include <support/locale_matrix.h>
#include <support/widened.h>

namespace {

using WidenedLocales = LocaleMatrix;

TEST_P(WidenedLocales, AreReadInTheCodePageOfTheThread) {
  EXPECT_STREQ(kexlib::widened(code_page().narrow), code_page().wide);
  EXPECT_EQ(kexlib::widened(code_page().narrow).Length(), std::wstring(code_page().wide).size());
}

INSTANTIATE_LOCALE_MATRIX(WidenedLocales);

}  // namespace
