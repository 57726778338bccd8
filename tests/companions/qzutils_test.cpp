// qzuRound: rounding to decimal places, half away from zero.
#include <gtest/gtest.h>

#include <qzutils/round.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

double rounded(double value, int digits) { return qzuRound::round_to(value, digits); }

TEST(RoundTo, RoundsHalvesAwayFromZero) {
  EXPECT_EQ(rounded(0.125, 2), 0.13);
  EXPECT_EQ(rounded(-0.125, 2), -0.13);
  EXPECT_EQ(rounded(0.5, 0), 1.0);
  EXPECT_EQ(rounded(1.5, 0), 2.0);
  EXPECT_EQ(rounded(2.5, 0), 3.0);
  EXPECT_EQ(rounded(-2.5, 0), -3.0);
  EXPECT_EQ(rounded(0.375, 2), 0.38);
}

TEST(RoundTo, RoundsWhatIsNoTieToTheNearest) {
  EXPECT_EQ(rounded(1.26, 1), 1.3);
  EXPECT_EQ(rounded(1.24, 1), 1.2);
  EXPECT_EQ(rounded(3.14159, 4), 3.1416);
  EXPECT_EQ(rounded(0.49999999999999994, 0), 0.0);
  EXPECT_EQ(rounded(1e-25, 24), 0.0);
  EXPECT_EQ(rounded(6e-25, 24), 1 / 1e24);
}

TEST(RoundTo, TakesTheValueAsADoubleHasIt) {
  EXPECT_EQ(rounded(1.005, 2), 1.0);   // 100.49999999999999
  EXPECT_EQ(rounded(1.115, 2), 1.12);  // 111.50000000000001
}

TEST(RoundTo, GivesTheDoubleThatIsNearestToTheDecimal) {
  std::uint64_t random = 1;
  for (int i = 0; i < 100000; ++i) {
    random = random * 6364136223846793005u + 1442695040888963407u;
    const double value = static_cast<double>(random >> 40) / 1000.0;
    const double same = rounded(value, 3);
    ASSERT_EQ(same, value);
  }
}

TEST(RoundTo, RoundsToTensWhereDigitsAreNegative) {
  EXPECT_EQ(rounded(1234.0, -1), 1230.0);
  EXPECT_EQ(rounded(1235.0, -1), 1240.0);
  EXPECT_EQ(rounded(1250.0, -2), 1300.0);
  EXPECT_EQ(rounded(-1250.0, -2), -1300.0);
  EXPECT_EQ(rounded(499.0, -3), 0.0);
  EXPECT_EQ(rounded(1e308, -308), 1e308);
  EXPECT_EQ(rounded(1e308, -309), 0.0);
  EXPECT_EQ(rounded(1e308, std::numeric_limits<int>::min()), 0.0);
}

TEST(RoundTo, KeepsTheSignOfAZero) {
  EXPECT_TRUE(std::signbit(rounded(-0.0, 2)));
  EXPECT_FALSE(std::signbit(rounded(0.0, 2)));
  EXPECT_TRUE(std::signbit(rounded(-0.001, 2)));
  EXPECT_EQ(rounded(-0.001, 2), 0.0);
  EXPECT_TRUE(std::signbit(rounded(-1.0, -309)));
}

TEST(RoundTo, LeavesAloneWhatCannotBeRounded) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(rounded(infinity, 2), infinity);
  EXPECT_EQ(rounded(-infinity, -2), -infinity);
  EXPECT_TRUE(std::isnan(rounded(std::numeric_limits<double>::quiet_NaN(), 2)));
  EXPECT_EQ(rounded(1e308, 2), 1e308);
  EXPECT_EQ(rounded(0.1, 17), 0.1);
  EXPECT_EQ(rounded(4503599627370497.0, 0), 4503599627370497.0);
  EXPECT_EQ(rounded(1.7e308, -308), 1.7e308);  // 2e308 exceeds every double
  EXPECT_EQ(rounded(0.1, 309), 0.1);
  EXPECT_EQ(rounded(0.1, std::numeric_limits<int>::max()), 0.1);
}

TEST(RoundTo, RoundsDenormalsToNothing) {
  constexpr double smallest = std::numeric_limits<double>::denorm_min();
  EXPECT_EQ(rounded(smallest, 308), 0.0);
  EXPECT_EQ(rounded(smallest, 309), smallest);
}

}  // namespace
