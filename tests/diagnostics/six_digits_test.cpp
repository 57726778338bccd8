#include <gtest/gtest.h>

#include <diagnostics/six_digits.h>
#include <support/c_library.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

namespace {

std::string six_digits(double value) {
  char text[kexlib::six_digits_size];
  return {text, kexlib::write_six_digits(text, value)};
}

// The expected result: the text of a stream with the classic locale.
class StreamText {
 public:
  StreamText() { stream_.imbue(std::locale::classic()); }
  std::string operator()(double value) {
    stream_.str({});
    stream_ << c_library::rightly_printed(value);
    return stream_.str();
  }

 private:
  std::ostringstream stream_;
};

TEST(SixDigits, WritesWhatOneExpects) {
  EXPECT_EQ(six_digits(0), "0");
  EXPECT_EQ(six_digits(-0.0), "-0");
  EXPECT_EQ(six_digits(1), "1");
  EXPECT_EQ(six_digits(12.34567), "12.3457");
  EXPECT_EQ(six_digits(100), "100");
  EXPECT_EQ(six_digits(0.5), "0.5");
  EXPECT_EQ(six_digits(0.0001), "0.0001");
  EXPECT_EQ(six_digits(0.00001), "1e-05");
  EXPECT_EQ(six_digits(999999.4), "999999");
  EXPECT_EQ(six_digits(999999.5), "1e+06");
  EXPECT_EQ(six_digits(1234567), "1.23457e+06");
  EXPECT_EQ(six_digits(-12.5), "-12.5");
}

TEST(SixDigits, RoundsTiesOfTheExactValueToEven) {
  EXPECT_EQ(six_digits(100000.5), "100000");
  EXPECT_EQ(six_digits(100001.5), "100002");
  EXPECT_EQ(six_digits(1.000005), "1.00001");  // the nearest double lies above the tie
  EXPECT_EQ(six_digits(2.000015), "2.00001");  // and here below it
}

TEST(SixDigits, WritesWhatAStreamWritesAtEveryEdge) {
  StreamText stream_text;
  for (int power = -12; power <= 12; ++power) {
    double value = std::pow(10.0, power);
    for (int i = 0; i < 50; ++i) value = std::nextafter(value, 0.0);
    for (int i = 0; i < 100; ++i, value = std::nextafter(value, 1e300))
      ASSERT_EQ(six_digits(value), stream_text(value)) << std::hexfloat << value;
    for (double digits = 0.9999990; digits < 1.0000020; digits += 0.00000005)
      ASSERT_EQ(six_digits(digits * std::pow(10.0, power)), stream_text(digits * std::pow(10.0, power)));
  }
  for (const double value : {std::numeric_limits<double>::max(), std::numeric_limits<double>::min(),
                             std::numeric_limits<double>::denorm_min(), -1e-300})
    EXPECT_EQ(six_digits(value), stream_text(value));
}

TEST(SixDigits, WritesWhatAStreamWritesForRandomValues) {
  StreamText stream_text;
  std::mt19937_64 random(1);
  for (int i = 0; i < 200000; ++i) {
    const std::uint64_t bits = random();
    const double any = std::bit_cast<double>(bits);
    if (std::isfinite(any)) {
      ASSERT_EQ(six_digits(any), stream_text(any)) << any;
    }
    const double time = static_cast<double>(bits >> (24 + bits % 40)) / 1e4;
    ASSERT_EQ(six_digits(time), stream_text(time)) << time;
  }
}

// Ties and their neighbours: seven digits that end in five, at every place of the point.
TEST(SixDigits, WritesWhatAStreamWritesNearTies) {
  StreamText stream_text;
  std::mt19937_64 random(2);
  for (int i = 0; i < 100000; ++i) {
    const double digits = static_cast<double>(100000 + random() % 900000) + 0.5;
    const double tie = digits * std::pow(10.0, -static_cast<double>(random() % 10));
    for (const double value : {std::nextafter(tie, 0.0), tie, std::nextafter(tie, 1e9)})
      ASSERT_EQ(six_digits(value), stream_text(value)) << std::hexfloat << value;
  }
}

}  // namespace
