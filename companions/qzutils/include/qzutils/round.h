// qzuRound: rounding to decimal places.
#ifndef QZUTILS_ROUND_H
#define QZUTILS_ROUND_H

class qzuRound {
 public:
  // Rounds the value to a number of decimal places, half away from zero: of 0.125, -0.125 and 2.5 to 2, 2 and 0 places,
  // 0.13, -0.13 and 3. The product value * 10^digits is rounded as a double: 1.005 to 2 places is 1, since that product
  // is below 100.5. Negative digits round to tens, hundreds and so on.
  //
  // A result of zero keeps the sign of the value. Returned unchanged are infinities, NaN, values that are too large to
  // have digits behind the last one asked for, values that rounding would make infinite, and every value for more than
  // 308 digits. Any thread.
  static double round_to(double value, int digits);
};

#endif
