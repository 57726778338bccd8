#include <support/fixed_text.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstring>
#include <iterator>

CStringA kexlib::fixed_text(double value, int digits) {
  constexpr int longest_number = 1 + 309;
  constexpr int most_digits = 1074;              // of a double; all further ones are zeros
  constexpr int longest_text = INT_MAX / 2 - 1;  // that a CString holds
  char text[longest_number + 1 + most_digits];
  // Run-time libraries differ here: some write "-nan(ind)", and some count a negative number of digits as given.
  if (std::isnan(value)) return CStringA("nan");
  if (std::isinf(value)) return CStringA(value < 0 ? "-inf" : "inf");
  if (digits < 0) digits = 6;
  const int exact_digits = std::min(digits, most_digits), zeros = digits - exact_digits;
  const char* const end = std::to_chars(text, std::end(text), value, std::chars_format::fixed, exact_digits).ptr;
  const int length = static_cast<int>(end - text);
  if (digits > 0) text[length - exact_digits - 1] = *std::localeconv()->decimal_point;
  if (zeros > longest_text - length) AfxThrowMemoryException();
  CStringA result(text, length);
  if (zeros) {
    std::memset(result.GetBuffer(length + zeros) + length, '0', static_cast<std::size_t>(zeros));
    result.ReleaseBufferSetLength(length + zeros);
  }
  return result;
}
