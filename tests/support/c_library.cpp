#include <support/c_library.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <iterator>
#include <string>

namespace {

// printf, by a format that the compiler does not know.
template <typename... Arguments>
std::string printed(const char* format, Arguments... arguments) {
  char text[100];
  std::snprintf(text, sizeof text, format, arguments...);
  return text;
}

bool known(bool holds, const char* otherwise) {
  if (!holds) std::printf("the C library differs: %s\n", otherwise);
  return holds;
}

}  // namespace

bool c_library::rounds_ties_to_even() {
  static const bool holds =
      known(printed("%.0f", 2.5) == "2", "printf rounds exact ties away from zero; they are not compared");
  return holds;
}

bool c_library::ignores_negative_precisions() {
  static const bool holds = known(printed("%.*f", -5, 0.5) == "0.500000",
                                  "printf counts with a negative precision; none is expected instead");
  return holds;
}

bool c_library::prints_characters_as_numbers() {
  static const bool holds =
      known(printed("%hhd", 300) == "44", "printf does not know %hhd; the text of an int is expected");
  return holds;
}

bool c_library::finds_nothing_at_the_end() {
  const char* const volatile text = "";  // the compiler has its own answer
  static const bool holds =
      known(std::strstr(text, text) != nullptr, "strstr finds no empty text at the end of a text");
  return holds;
}

bool c_library::knows_wide_blanks() {
  static const bool holds = known(std::iswspace(0x3000) != 0, "iswspace does not know the ideographic space");
  return holds;
}

bool c_library::rounds_away(double value, int digits, std::chars_format format) {
  constexpr int most_digits = 1074;  // that a double has after the point
  if (rounds_ties_to_even() || !std::isfinite(value) || digits < 0 || digits >= most_digits) return false;
  char text[2000];
  const auto end = std::to_chars(text, std::end(text), std::fabs(value), format, most_digits).ptr;
  const auto point = std::find(text, end, '.'), lost = point + 1 + digits;
  const char kept = digits > 0 ? lost[-1] : point[-1];
  return (kept - '0') % 2 == 0 && *lost == '5' &&
         std::all_of(lost + 1, point + 1 + most_digits, [](char digit) { return digit == '0'; });
}

double c_library::rightly_printed(double value) {
  return rounds_away(value, 5, std::chars_format::scientific) ? std::nextafter(value, 0.0) : value;
}
