// NEUTRAL_FMT: vsprintf of the "C" locale, into a buffer of limited size.
#include <gtest/gtest.h>

#include <neutralfmt/vsprintf.h>
#include <support/c_library.h>
#include <support/decimal_comma.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

namespace {

int format_into(char* buffer, std::size_t size, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = NEUTRAL_FMT::vsprintf(buffer, size, format, arguments);
  va_end(arguments);
  return length;
}

template <typename... Arguments>
std::string text(const char* format, Arguments... arguments) {
  char buffer[2000];
  std::memset(buffer, '#', sizeof buffer);
  const int length = format_into(buffer, sizeof buffer, format, arguments...);
  if (length < 0) return buffer[0] ? "an error, and a text" : "an error";
  EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(buffer));
  return buffer;
}

// The result of the run-time library in the "C" locale.
template <typename... Arguments>
std::string plain(const char* format, Arguments... arguments) {
  char buffer[2000];
  std::snprintf(buffer, sizeof buffer, format, arguments...);
  return buffer;
}

TEST(NeutralFormat, TakesNoTimeForWhatDoesNotFit) {
  const std::string blanks(1998, ' '), zeros(1998, '0');
  for (const int many : {30000, 2000000000, INT_MAX}) {
    EXPECT_EQ(text("%*d", many, 5), " " + blanks);
    EXPECT_EQ(text("%-*d", many, 5), "5" + blanks);
    EXPECT_EQ(text("%*d", -many, 5), "5" + blanks);
    EXPECT_EQ(text("%0*d", many, -5), "-" + zeros);
    EXPECT_EQ(text("%.*d", many, 5), "0" + zeros);
    EXPECT_EQ(text("%*s", many, "text"), " " + blanks);
    EXPECT_EQ(text("%.*s", many, "text"), "text");
    EXPECT_EQ(text("%.*e", many, 0.5), "5." + zeros.substr(1));
    EXPECT_EQ(text("%#.*g", many, 2.0), "2." + zeros.substr(1));
    EXPECT_EQ(text("%*.*f", many, many, 0.5), "0.5" + zeros.substr(2));
  }
  EXPECT_EQ(text("%*d", INT_MIN, 5), "5" + blanks);
}

TEST(NeutralFormat, PrintsAPointWhateverTheLocale) {
  const std::string hexadecimal = plain("%a", 1.5);  // run-time libraries write other numbers of zeros
  const DecimalComma locale;
  ASSERT_TRUE(locale.made());
  EXPECT_EQ(text("%a", 1.5), hexadecimal);
  ASSERT_EQ(plain("%.1f", 1.5), "1,5");
  EXPECT_EQ(text("%.1f", 1.5), "1.5");
  EXPECT_EQ(text("%.*lf", 2, -1234.5), "-1234.50");
  EXPECT_EQ(text("%#.1f", 1.5), "1.5");
  EXPECT_EQ(text("%e", 1.5), "1.500000e+00");
  EXPECT_EQ(text("%g", 0.5), "0.5");
  EXPECT_EQ(text("%.2Lf", 2.25L), "2.25");
}

TEST(NeutralFormat, PrintsTheExactDigitsTiesToEven) {
  EXPECT_EQ(text("%.2f", 0.125), "0.12");
  EXPECT_EQ(text("%.0f", 2.5), "2");
  EXPECT_EQ(text("%.0f", 3.5), "4");
  EXPECT_EQ(text("%.30f", 0.1), "0.100000000000000005551115123126");
  EXPECT_EQ(text("%.0f", 1e22), "10000000000000000000000");
}

TEST(NeutralFormat, PrintsWhatIsNoNumberAsAWord) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(text("%.2f|%.2f|%F", infinity, -infinity, infinity), "inf|-inf|INF");
  EXPECT_EQ(text("%.2f|%.2f|%F", nan, std::copysign(nan, -1.0), nan), "nan|nan|NAN");
  EXPECT_EQ(text("%08.2f", infinity), "     inf");
  EXPECT_EQ(text("%e|%g|%a|%#f|%Lf", infinity, -infinity, infinity, infinity, -HUGE_VALL), "inf|-inf|inf|inf|-inf");
  EXPECT_EQ(text("%E|%G|%A|%Lg", infinity, -infinity, nan, static_cast<long double>(nan)), "INF|-INF|NAN|nan");
  EXPECT_EQ(text("%e|%g|%a", nan, std::copysign(nan, -1.0), nan), "nan|nan|nan");
}

TEST(NeutralFormat, PrintsFixedNumbersAsTheRunTimeLibraryDoes) {
  std::uint64_t random = 7;
  const char* const formats[] = {"%*.*f", "%-*.*f|", "%0*.*f", "%+*.*f", "% *.*f", "%-0+*.*f|"};
  for (int i = 0; i < 20000; ++i) {
    random = random * 6364136223846793005u + 1442695040888963407u;
    double value;
    std::memcpy(&value, &random, sizeof value);
    if (std::isnan(value)) continue;
    if (i % 2) value = static_cast<double>(static_cast<std::int64_t>(random) >> 30) / 1024.0;  // many ties
    const int width = i % 40 - 20;
    const int precision = i % 12;
    if (c_library::rounds_away(value, precision)) continue;
    const char* const format = formats[i % std::ssize(formats)];
    ASSERT_EQ(text(format, width, precision, value), plain(format, width, precision, value))
        << format << ' ' << width << ' ' << precision;
  }
}

TEST(NeutralFormat, TakesEachNegativePrecisionAsNone) {
  for (const int precision : {-1, -2, -100, INT_MIN}) {
    EXPECT_EQ(text("%.*f|%.*e|%.*g", precision, 1.5, precision, 1.5, precision, 1.5), "1.500000|1.500000e+00|1.5");
    EXPECT_EQ(text("%.*d|%.*s", precision, 7, precision, "text"), "7|text");
  }
}

TEST(NeutralFormat, FillsUpBehindTheDigitsThatADoubleHas) {
  std::string expected = plain("%.1074f", std::numeric_limits<double>::denorm_min()) + std::string(26, '0');
  EXPECT_EQ(text("%.1100f", std::numeric_limits<double>::denorm_min()), expected);
}

TEST(NeutralFormat, PrintsEverythingElseAsVsprintfDoes) {
  EXPECT_EQ(text("plain"), "plain");
  EXPECT_EQ(text(""), "");
  EXPECT_EQ(text("100%%"), "100%");
  EXPECT_EQ(text("%d|%5d|%-5d|%05d|%+d|%.3d", 7, 7, 7, 7, 7, 7), "7|    7|7    |00007|+7|007");
  EXPECT_EQ(text("%u %x %X %o %#x", 255u, 255u, 255u, 8u, 255u), "255 ff FF 10 0xff");
  EXPECT_EQ(text("%ld %lld %hd %zu", -1L, 1LL << 40, 70000, std::size_t{9}), "-1 1099511627776 4464 9");
  EXPECT_EQ(text("%hhd", 300), c_library::prints_characters_as_numbers() ? "44" : "300");
  EXPECT_EQ(text("%c%c", 'a', 'b'), "ab");
  EXPECT_EQ(text("%s|%5s|%-5s|%.2s", "abc", "abc", "abc", "abc"), "abc|  abc|abc  |ab");
  EXPECT_EQ(text("%ls", L"wide"), "wide");
  int object = 0;
  void* const address = &object;
  EXPECT_EQ(text("%p", address), plain("%p", address));
}

TEST(NeutralFormat, CutsWhatDoesNotFit) {
  for (const std::size_t size : {1u, 2u, 5u, 6u, 7u, 8u}) {
    char buffer[9];
    std::memset(buffer, '#', sizeof buffer);
    const std::string whole = "a-12.5b";
    const std::string expected = whole.substr(0, size - 1);
    EXPECT_EQ(format_into(buffer, size, "%c%.1f%s", 'a', -12.5, "b"), static_cast<int>(expected.size()));
    EXPECT_EQ(std::string(buffer), expected);
    EXPECT_EQ(buffer[size], '#') << "written behind the end";
  }
  char buffer[260];
  EXPECT_EQ(format_into(buffer, sizeof buffer, "%.2f", 1e308), 259);
  EXPECT_EQ(std::string(buffer), plain("%.2f", 1e308).substr(0, 259));
  EXPECT_EQ(format_into(buffer, sizeof buffer, "%.500f", 0.5), 259);
  EXPECT_EQ(format_into(buffer, sizeof buffer, "%2000.1f", 0.5), 259);
  EXPECT_EQ(std::string(buffer), std::string(259, ' '));
  EXPECT_EQ(format_into(nullptr, 0, "%d", 1), 0);
}

TEST(NeutralFormat, RefusesFormatsThatAreNotValid) {
  EXPECT_EQ(text("before %y", 1), "an error");
  EXPECT_EQ(text("before %"), "an error");
  EXPECT_EQ(text("%-------------------------------d", 1), "an error");
  int count = 5;
  EXPECT_EQ(text("abc%n", &count), "an error");
  EXPECT_EQ(count, 5);
}

}  // namespace
