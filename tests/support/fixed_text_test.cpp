// Numbers with a fixed number of decimal places, as printf formats them.
#include <gtest/gtest.h>

#include <support/c_library.h>
#include <support/fixed_text.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace {

using kexlib::fixed_text;

std::string printed(double value, int digits) {
  CStringA text;
  if (digits < 0 && !c_library::ignores_negative_precisions()) digits = 6;
  text.Format("%.*f", digits, value);
  return text.GetString();
}

TEST(FixedText, IsWhatPrintfPrints) {
  std::uint64_t random = 3;
  for (int i = 0; i < 20000; ++i) {
    random = random * 6364136223846793005u + 1442695040888963407u;
    double value;
    std::memcpy(&value, &random, sizeof value);
    if (i % 2) value = static_cast<double>(static_cast<std::int64_t>(random) >> 30) / 1024.0;  // many ties
    if (!std::isfinite(value)) continue;
    const int digits = i % 103 - 1;
    if (c_library::rounds_away(value, digits < 0 ? 6 : digits)) continue;
    ASSERT_EQ(fixed_text(value, digits).GetString(), printed(value, digits)) << digits;
  }
}

TEST(FixedText, IsWhatPrintfPrintsAtTheEdgesToo) {
  using Limits = std::numeric_limits<double>;
  for (const double value : {0.0, -0.0, Limits::denorm_min(), Limits::max(), -Limits::max()})
    for (const int digits : {-5, 0, 1, 30, 100, 101, 2000})
      EXPECT_EQ(fixed_text(value, digits).GetString(), printed(value, digits)) << value << ' ' << digits;
}

// All digits after the 1074th are zeros.
TEST(FixedText, HasAsManyDigitsAsItIsAskedFor) {
  using Limits = std::numeric_limits<double>;
  for (const double value : {0.5, -0.0, -Limits::denorm_min(), Limits::max()}) {
    const std::string exact = fixed_text(value, 1074).GetString();
    for (const int digits : {1075, 1000000, 30000000})
      EXPECT_TRUE(fixed_text(value, digits).GetString() == exact + std::string(static_cast<size_t>(digits) - 1074, '0'))
          << value << ' ' << digits;
  }
  EXPECT_EQ(std::string(fixed_text(Limits::denorm_min(), 1074)).back(), '5') << "the last one that is no zero";
}

// A text has fewer than INT_MAX / 2 characters.
TEST(FixedText, ThrowsWhereItWouldBeTooLong) {
  for (const auto& [value, digits] :
       {std::pair{0.5, INT_MAX}, {0.5, 2000000000}, {0.5, INT_MAX / 2 - 2}, {-1e300, INT_MAX / 2 - 303}}) {
    bool thrown = false;
    try {
      fixed_text(value, digits);
    } catch (CMemoryException* exception) {
      exception->Delete();
      thrown = true;
    }
    EXPECT_TRUE(thrown) << digits;
  }
  EXPECT_STREQ(fixed_text(std::numeric_limits<double>::infinity(), INT_MAX), "inf");
  EXPECT_STREQ(fixed_text(2.5, INT_MIN), "2.500000");
}

TEST(FixedText, NamesWhatIsNoNumber) {
  using Limits = std::numeric_limits<double>;
  for (const int digits : {-5, 0, 1, 101}) {
    EXPECT_STREQ(fixed_text(Limits::infinity(), digits), "inf");
    EXPECT_STREQ(fixed_text(-Limits::infinity(), digits), "-inf");
    EXPECT_STREQ(fixed_text(Limits::quiet_NaN(), digits), "nan");
    EXPECT_STREQ(fixed_text(std::copysign(Limits::quiet_NaN(), -1.0), digits), "nan");  // what 0.0 / 0.0 makes
    EXPECT_STREQ(fixed_text(Limits::signaling_NaN(), digits), "nan");
  }
}

TEST(FixedText, HasThePointOfTheLocaleThatIsSet) {
  ASSERT_NE(std::setlocale(LC_NUMERIC, "German"), nullptr);
  const std::string text = fixed_text(-1234.5, 2).GetString();
  const std::string whole = fixed_text(1234.6, 0).GetString();
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(text, "-1234,50");
  EXPECT_EQ(whole, "1235");
}

}  // namespace
