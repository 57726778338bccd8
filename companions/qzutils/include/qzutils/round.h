// qzuRound: rounding to decimal places.
#ifndef QZUTILS_ROUND_H
#define QZUTILS_ROUND_H

class qzuRound {
 public:
  // The value rounded to so many decimal places, half away from zero: of 0.125, -0.125 and 2.5 to 2, 2 and 0 places,
  // 0.13, -0.13 and 3. What counts is value * 10^digits as a double has it: 1.005 to 2 places is 1, since that product
  // is below 100.5. Negative digits round to tens, hundreds and so on.
  //
  // A zero keeps its sign, and so does what becomes one. Infinities, NaN, and values that are too large for a double to
  // have more digits than are asked for (or that rounding would make infinite) come back unchanged, and so does every
  // value for more than 308 digits. Any thread.
  static double round_to(double value, int digits);
};

#endif
