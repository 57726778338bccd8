// NEUTRAL_FMT: the same text with each decimal point, in each code page.
#include <neutralfmt/vsprintf.h>
#include <support/locale_matrix.h>

namespace {

std::string formatted(const char* format, ...) {
  char buffer[200];
  std::va_list arguments;
  va_start(arguments, format);
  const int length = NEUTRAL_FMT::vsprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  return std::string(buffer, static_cast<std::size_t>(length));
}

using NeutralFormatLocales = LocaleMatrix;

TEST_P(NeutralFormatLocales, HaveAPointAndTheBytesOfTexts) {
  const std::string narrow = code_page().narrow;
  EXPECT_EQ(formatted("%.3f|%g|%.1e|%#.0f|%d", 1234567.125, 0.5, 12.6, 2.0, 1234567),
            "1234567.125|0.5|1.3e+01|2.|1234567");
  EXPECT_EQ(formatted("%s,%.2s", narrow.c_str(), narrow.c_str()), narrow + "," + narrow.substr(0, 2));
}

INSTANTIATE_LOCALE_MATRIX(NeutralFormatLocales);

}  // namespace
