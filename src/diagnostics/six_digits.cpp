#include <diagnostics/six_digits.h>

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace kexlib {
namespace {

char* write_exactly(char* out, double value) {
  return std::to_chars(out, out + six_digits_size, value, std::chars_format::general, 6).ptr;
}

// Eight characters in one number, the first one in the lowest byte. So a text is put together without branches.
using Text = std::uint64_t;

constexpr Text zeros = 0x3030303030303030;  // "00000000"

void store(char* out, Text text) { std::memcpy(out, &text, sizeof text); }

// "000" to "999".
struct Triple {
  std::uint32_t text = 0;
  int significant = 0;  // digits without the zeros at the end
};
constexpr auto triples = [] {
  std::array<Triple, 1000> made{};
  for (unsigned i = 0; i < made.size(); ++i) {
    const unsigned digits[] = {i / 100, i / 10 % 10, i % 10};
    for (int at = 0; at < 3; ++at) {
      made[i].text |= ('0' + digits[at]) << 8 * at;
      if (digits[at] != 0) made[i].significant = at + 1;
    }
  }
  return made;
}();

// What follows from the exponent of the first digit.
struct Form {
  double next_power = 0;  // where the next exponent begins
  double scale = 0;       // makes a number of six digits of a value
  Text before_point = 0;  // a mask for the digits before the point
  Text point = 0;
};
constexpr int lowest_exponent = -5, highest_exponent = 5;
constexpr auto forms = [] {
  std::array<Form, highest_exponent - lowest_exponent + 1> made{};
  constexpr double powers[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
  constexpr double scales[] = {1e10, 1e9, 1e8, 1e7, 1e6, 1e5, 1e4, 1e3, 1e2, 1e1, 1e0};
  for (std::size_t i = 0; i < made.size(); ++i) {
    const int whole = lowest_exponent + static_cast<int>(i) + 1;  // digits before the point
    const int bits = whole > 0 ? 8 * whole : 0;
    made[i] = {powers[i], scales[i], (Text{1} << bits) - 1, Text{'.'} << bits};
  }
  return made;
}();

const Form& form_of(int exponent) { return forms[static_cast<std::size_t>(exponent - lowest_exponent)]; }

int exponent_of(double value) {
  constexpr int bias = 1023;
  const int binary = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - bias;
  const int exponent = binary * 1233 >> 12;  // of that power of two: 1233 / 4096 is the logarithm of 2
  return exponent + (value >= form_of(exponent).next_power);
}

}  // namespace

// Nearly all times are between a ten-thousandth and a million milliseconds. Those are scaled to a number of six digits.
// The scales are exact and the product is rounded once, so it never crosses the middle between two numbers, but it may
// lie on it. Then, and outside that range, the exact and slower conversion is used.
char* write_six_digits(char* out, double value) {
  if (!(value >= 1e-4 && value < 999999.5)) return write_exactly(out, value);
  int exponent = exponent_of(value);

  const double rounded = value * form_of(exponent).scale + 0.5;
  auto number = static_cast<std::uint32_t>(rounded);
  if (rounded == number) return write_exactly(out, value);  // it was on the middle
  if (number == 1000000) {
    number = 100000;
    ++exponent;
  }

  const Triple &high = triples[number / 1000], &low = triples[number % 1000];
  const Text digits = high.text | Text{low.text} << 24;
  const int count = low.significant ? 3 + low.significant : high.significant;
  if (exponent < 0) {
    store(out, '0' | '.' << 8 | zeros << 16);
    out += 1 - exponent;
    store(out, digits);
    return out + count;
  }
  const Form& form = form_of(exponent);
  store(out, (digits & form.before_point) | form.point | (digits & ~form.before_point) << 8);
  const int whole = exponent + 1;
  return out + (count > whole ? count + 1 : whole);
}

}  // namespace kexlib
