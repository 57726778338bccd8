#include <qzutils/round.h>

#include <charconv>
#include <cmath>

namespace {

// The nearest double. The result of std::pow differs from it in the last bit for most exponents above 22.
double power_of_ten(int exponent) {
  char text[8] = "1e";
  const char* const end = std::to_chars(text + 2, text + sizeof text, exponent).ptr;
  double power = HUGE_VAL;  // the result if the power is too large
  std::from_chars(text, end, power);
  return power;
}

// Doubles from here on are integers.
constexpr double first_without_fraction = 4503599627370496.0;

// Replaces std::round, which rounds 0.49999999999999994 to 1 in some run-time libraries.
double nearest_whole(double value) {
  const double whole = std::trunc(value);
  return std::fabs(value - whole) < 0.5 ? whole : whole + std::copysign(1.0, value);
}

double round_places(double value, double scale) {
  const double scaled = value * scale;
  // Also if the product is infinite: the value has no digits to round.
  return std::fabs(scaled) < first_without_fraction ? nearest_whole(scaled) / scale : value;
}

double round_tens(double value, double scale) {
  if (std::isinf(scale)) return std::copysign(0.0, value);  // half of the rounding unit already exceeds every double
  const double rounded = nearest_whole(value / scale) * scale;
  return std::isinf(rounded) ? value : rounded;
}

constexpr int largest_exponent = 308;

}  // namespace

double qzuRound::round_to(double value, int digits) {
  if (!std::isfinite(value) || digits > largest_exponent) return value;
  if (digits >= 0) return round_places(value, power_of_ten(digits));
  return round_tens(value, digits < -largest_exponent ? HUGE_VAL : power_of_ten(-digits));
}
