// Numbers with one decimal, each formatted once.
#include <gtest/gtest.h>

#include <text/number_texts.h>

#include <chrono>
#include <clocale>
#include <limits>
#include <string>

namespace {

using kexlib::NumberTexts;

TEST(NumberTexts, HaveOneDecimal) {
  NumberTexts numbers;
  EXPECT_STREQ(numbers.text(1.26), "1.3");
  EXPECT_STREQ(numbers.text(2), "2.0");
  EXPECT_STREQ(numbers.text(0.25), "0.2");  // ties to even
  EXPECT_STREQ(numbers.text(-1e20), "-100000000000000000000.0");
}

TEST(NumberTexts, AreMadeOnce) {
  NumberTexts numbers;
  EXPECT_EQ(numbers.count(), 0u);
  const char* const first = numbers.text(1.5);
  EXPECT_EQ(numbers.count(), 1u);
  for (int i = 0; i < 1000; ++i) numbers.text(i);
  EXPECT_EQ(numbers.text(1.5).GetString(), first);
  EXPECT_EQ(numbers.count(), 1001u);
}

TEST(NumberTexts, AreThoseOfTheFirstTime) {
  NumberTexts numbers;
  EXPECT_STREQ(numbers.text(1.5), "1.5");
  ASSERT_NE(std::setlocale(LC_NUMERIC, "German"), nullptr);
  const std::string known = numbers.text(1.5).GetString();
  const std::string fresh = numbers.text(2.5).GetString();
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(known, "1.5");
  EXPECT_EQ(fresh, "2,5");
  EXPECT_STREQ(numbers.text(2.5), "2,5");
}

TEST(NumberTexts, TakeBothZerosAsOneNumber) {
  NumberTexts numbers;
  EXPECT_STREQ(numbers.text(0.0), "0.0");
  EXPECT_STREQ(numbers.text(-0.0), "0.0");
  EXPECT_EQ(numbers.count(), 1u);
  NumberTexts others;
  EXPECT_STREQ(others.text(-0.0), "-0.0");
  EXPECT_STREQ(others.text(0.0), "-0.0");
}

// A NaN is never found: it compares unequal to every value.
TEST(NumberTexts, KeepEachNanAnew) {
  NumberTexts numbers;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_STREQ(numbers.text(nan), "nan");
  EXPECT_STREQ(numbers.text(nan), "nan");
  EXPECT_EQ(numbers.count(), 2u);
  EXPECT_STREQ(numbers.text(std::numeric_limits<double>::infinity()), "inf");
}

// A search through all of them takes about 20 seconds here.
TEST(NumberTexts, DoNotSearchForANan) {
  NumberTexts numbers;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 100000; ++i) numbers.text(std::numeric_limits<double>::quiet_NaN());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_EQ(numbers.count(), 100000u);
}

TEST(NumberTexts, StayWhereTheyAreWhateverIsAdded) {
  NumberTexts numbers;
  const CStringA& nan = numbers.text(std::numeric_limits<double>::quiet_NaN());
  const CStringA& number = numbers.text(0.5);
  for (int i = 0; i < 1000; ++i) {
    numbers.text(std::numeric_limits<double>::quiet_NaN());
    numbers.text(i);
  }
  EXPECT_STREQ(nan, "nan");
  EXPECT_STREQ(number, "0.5");
}

}  // namespace
