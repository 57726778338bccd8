// Rounding to decimal places: the nearest whole number of the product, in steps that a double does exactly.
#include <fuzz/core.h>
#include <qzutils/round.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

double half_away_from_zero(double value) {
  double whole;
  const double fraction = std::modf(value, &whole);  // exact
  return std::fabs(fraction) >= 0.5 ? whole + std::copysign(1.0, value) : whole;
}

double rounded_literally(double value, int digits) {
  if (!std::isfinite(value) || digits > 308) return value;
  if (digits < -308) return std::copysign(0.0, value);  // half of the step is more than any double
  const double power = std::strtod(("1e" + std::to_string(std::abs(digits))).c_str(), nullptr);
  const double scaled = digits < 0 ? value / power : value * power;
  if (digits >= 0 && std::fabs(scaled) >= 4503599627370496.0) return value;  // nothing lies behind the last digit
  const double whole = half_away_from_zero(scaled);
  const double result = digits < 0 ? whole * power : whole / power;
  return std::isfinite(result) ? result : value;
}

const fuzz::Core core("rounding", [](fuzz::Input& input) {
  do {
    const int digits = input.flag() ? input.number<std::int16_t>() % 330 : static_cast<int>(input.below(12)) - 3;
    const double value = input.real();
    const double ours = qzuRound::round_to(value, digits), expected = rounded_literally(value, digits);
    if (std::isnan(ours) && std::isnan(expected)) continue;
    // As bits: the sign of a zero counts.
    if (std::bit_cast<std::uint64_t>(ours) != std::bit_cast<std::uint64_t>(expected))
      throw fuzz::Difference(std::to_string(ours) + " instead of " + std::to_string(expected) + ", " +
                             std::to_string(value) + " to " + std::to_string(digits) + " places");
  } while (!input.empty());
});

}  // namespace
