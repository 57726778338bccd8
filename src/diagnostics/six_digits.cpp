#include <diagnostics/six_digits.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace kexlib {
namespace {

char* write_exactly(char* out, double value) {
  return std::to_chars(out, out + six_digits_size, value, std::chars_format::general, 6).ptr;
}

// "00" to "99"
struct DigitPairs {
  constexpr DigitPairs() {
    for (int i = 0; i < 100; ++i) {
      text[i][0] = static_cast<char>('0' + i / 10);
      text[i][1] = static_cast<char>('0' + i % 10);
    }
  }
  char text[100][2]{};
};
constexpr DigitPairs digit_pairs;

}  // namespace

// Nearly all times are between a ten-thousandth and a million milliseconds. Those are scaled to a number of six digits.
// The scales are exact and the product is rounded once, so it never crosses the middle between two numbers, but it may
// lie on it. Then, and outside that range, the exact and slower conversion is used.
char* write_six_digits(char* out, double value) {
  constexpr double scales[] = {1e5, 1e4, 1e3, 1e2, 1e1, 1e0};  // by the digits before the point, less one
  if (!(value >= 1e-4 && value < 999999.0)) {
    if (value != 0 || std::signbit(value)) return write_exactly(out, value);
    *out = '0';
    return out + 1;
  }

  int exponent = 0;  // of the first digit
  double scaled;
  if (value >= 1) {
    exponent = (value >= 10) + (value >= 100) + (value >= 1000) + (value >= 10000) + (value >= 100000);
    scaled = value * scales[exponent];
  } else if (value >= 0.1) {
    exponent = -1, scaled = value * 1e6;
  } else if (value >= 0.01) {
    exponent = -2, scaled = value * 1e7;
  } else if (value >= 0.001) {
    exponent = -3, scaled = value * 1e8;
  } else {
    exponent = -4, scaled = value * 1e9;
  }

  auto number = static_cast<std::uint32_t>(scaled);
  const double fraction = scaled - number;
  if (fraction == 0.5) return write_exactly(out, value);
  number += fraction > 0.5;
  if (number == 1000000) {
    number = 100000;
    ++exponent;
  }

  char digits[6];
  std::memcpy(digits, digit_pairs.text[number / 10000], 2);
  std::memcpy(digits + 2, digit_pairs.text[number / 100 % 100], 2);
  std::memcpy(digits + 4, digit_pairs.text[number % 100], 2);
  int count = 6;
  while (count > 1 && digits[count - 1] == '0') --count;

  if (exponent < 0) {
    std::copy_n("0.000", 5, out);
    out += 1 - exponent;
    std::memcpy(out, digits, 6);
    return out + count;
  }
  const int whole = exponent + 1;
  std::memcpy(out, digits, 6);
  if (count <= whole) return out + whole;
  out[whole] = '.';
  std::memcpy(out + whole + 1, digits + whole, static_cast<std::size_t>(count - whole));
  return out + count + 1;
}

}  // namespace kexlib
