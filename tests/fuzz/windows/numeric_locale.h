// Numbers as printf prints them, with a point or a comma.
#ifndef TESTS_FUZZ_WINDOWS_NUMERIC_LOCALE_H
#define TESTS_FUZZ_WINDOWS_NUMERIC_LOCALE_H

#include <fuzz/core.h>
#include <support/decimal_comma.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <memory>
#include <optional>
#include <string>

namespace fuzz {

// A comma as the decimal point, if it is wanted, while the object lives.
class CommaLocale {
 public:
  explicit CommaLocale(bool set) {
    if (set && !comma_.emplace().made()) throw Difference("there is no locale with a comma");
  }

 private:
  std::optional<DecimalComma> comma_;
};

// What printf prints by the standard of C, in the locale that is set. Not each C library's does.
inline std::string printed(double value, int digits) {
  if (value != value) return "nan";  // without a sign
  constexpr int most_before_the_point = 310, most_digits = 32767;
  const auto space = std::make_unique<char[]>(most_before_the_point + most_digits);
  const auto end = std::to_chars(space.get(), space.get() + most_before_the_point + most_digits, value,
                                 std::chars_format::fixed, digits < 0 ? 6 : digits)
                       .ptr;
  std::string text(space.get(), end);
  std::replace(text.begin(), text.end(), '.', *std::localeconv()->decimal_point);
  return text;
}

// Every occurrence replaced, from left to right.
inline std::string replaced(const std::string& text, const std::string& old_text, const std::string& new_text) {
  if (old_text.empty()) return text;
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    if (text.compare(at, old_text.size(), old_text) == 0) {
      result += new_text;
      at += old_text.size();
    } else {
      result += text[at++];
    }
  }
  return result;
}

}  // namespace fuzz

#endif
