#include <support/fixed_text.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstring>
#include <iterator>

CStringA kexlib::fixed_text(double value, int digits) {
  constexpr int longest_number = 1 + 309;
  constexpr int most_digits = 100;
  char text[longest_number + 1 + most_digits];
  // Run-time libraries differ here: some write "-nan(ind)", and some count a negative number of digits as given.
  if (std::isnan(value)) return CStringA("nan");
  if (std::isinf(value)) return CStringA(value < 0 ? "-inf" : "inf");
  if (digits < 0) digits = 6;
  if (digits > most_digits) {  // seldom
    CStringA formatted;
    formatted.Format("%.*f", digits, value);
    return formatted;
  }
  const char* const end = std::to_chars(text, std::end(text), value, std::chars_format::fixed, digits).ptr;
  if (digits > 0) text[end - text - digits - 1] = *std::localeconv()->decimal_point;
  return CStringA(text, static_cast<int>(end - text));
}
