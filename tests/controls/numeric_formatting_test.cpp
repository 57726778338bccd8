// Numbers as text: in real edit controls, in units, with all kinds of separators.
#include <gtest/gtest.h>

#include <kexlib/controls/numeric_formatting.h>

#include <controls/formatting.h>
#include <controls/resources.h>
#include <support/decimal_comma.h>
#include <support/import_override.h>
#include <support/resource_counts.h>
#include <support/window_text.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using Numbers = kexNumericFormatting;
using Edit = WTL::CEditT<CWindow>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::string put(double value, const char* separator, long digits) {
  return Numbers::putValue(nullptr, value, separator, digits).GetString();
}

std::string with_digits(double value, int digits) { return Formatting(digits, 0, KRV_Inches, KRV_Inches).plain(value); }

// A dialog with two edit controls, one of them with several lines.
class EditControls : public testing::Test {
 protected:
  EditControls() {
    const auto procedure = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
    dialog_ = CreateDialogParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_NUMBERS), nullptr, procedure, 0);
    edit_.Attach(GetDlgItem(dialog_, IDC_NUMBER));
    lines_.Attach(GetDlgItem(dialog_, IDC_LINES));
  }
  ~EditControls() override { DestroyWindow(dialog_); }

  double read(const std::string& text, const char* separator = ".") {
    SetWindowTextA(edit_, text.c_str());
    return Numbers::getValue(&edit_, separator);
  }

  HWND dialog_ = nullptr;
  Edit edit_;
  Edit lines_;
};

TEST(NumberFormatting, ConvertsBetweenInchesAndMillimetres) {
  Formatting formatting(2, 4, KRV_Inches, KRV_Millimetres);
  EXPECT_EQ(formatting.with_units(1.0), "25.40");
  formatting.set_from_units(KRV_Millimetres);
  formatting.set_to_units(KRV_Inches);
  EXPECT_EQ(formatting.with_units(25.4), "1.00");
}

// Division by 25.4 and multiplication by 1 / 25.4 differ in the last bit for many values, such as 7.62.
TEST(NumberFormatting, DividesToGetInches) {
  Formatting formatting(17, 0, KRV_Millimetres, KRV_Inches);
  int different = 0;
  for (double value = 0.01; value < 10; value += 0.01) {
    if (value / 25.4 != value * (1 / 25.4)) ++different;
    EXPECT_EQ(formatting.with_units(value), with_digits(value / 25.4, 17));
  }
  EXPECT_GT(different, 100);
}

TEST(NumberFormatting, ConvertsNothingBetweenOtherUnits) {
  const int units[][2] = {{0, 0}, {1, 1}, {0, 5}, {5, 0}, {1, 5}, {5, 1}, {5, 5}, {-1, 0}, {5, 6}};
  for (const auto& [from, to] : units) {
    Formatting formatting(2, 4, static_cast<KRV_Units>(from), static_cast<KRV_Units>(to));
    EXPECT_EQ(formatting.with_units(2.5), "2.50") << from << " to " << to;
  }
}

TEST(NumberFormatting, OnlyConvertsWhereUnitsAreAskedFor) {
  Formatting formatting(1, 2, KRV_Inches, KRV_Millimetres);
  EXPECT_EQ(formatting.plain(1.0), "1.0");
  EXPECT_EQ(formatting.neutral(1.0), "1.00");
}

TEST(NumberFormatting, FormatsNeutralTextsWithTheirOwnDigitsAndTheSameRounding) {
  Formatting formatting(0, 3, KRV_Inches, KRV_Inches);
  EXPECT_EQ(formatting.neutral(1.0005), with_digits(1.0005, 3));
  EXPECT_EQ(formatting.neutral(0.0625), "0.063");
  EXPECT_EQ(formatting.plain(0.5), "1");
}

// printf alone would write 0.12, 2 and 0.
TEST(NumberFormatting, RoundsHalvesAwayFromZeroBeforeItPrints) {
  EXPECT_EQ(with_digits(0.125, 2), "0.13");
  EXPECT_EQ(with_digits(2.5, 0), "3");
  EXPECT_EQ(with_digits(-0.5, 0), "-1");
  EXPECT_EQ(with_digits(1.005, 2), "1.00");  // the double is slightly less
}

TEST(NumberFormatting, PrintsEveryDoubleThereIs) {
  EXPECT_EQ(with_digits(0.0, 2), "0.00");
  EXPECT_EQ(with_digits(-0.0, 2), "-0.00");
  EXPECT_EQ(with_digits(-0.001, 2), "-0.00");
  EXPECT_EQ(with_digits(std::numeric_limits<double>::denorm_min(), 2), "0.00");
  EXPECT_EQ(with_digits(infinity, 2), "inf");
  EXPECT_EQ(with_digits(-infinity, 2), "-inf");
  EXPECT_EQ(with_digits(nan, 2), "nan");
  const std::string large = with_digits(1e308, 2);
  EXPECT_EQ(large.size(), 312u);  // there is no limit
  EXPECT_TRUE(
      large.starts_with("100000000000000001097906362944045541740492309677311846336810682903157585404911491537"));
}

TEST(NumberFormatting, PrintsAllDigitsThatAreAskedFor) {
  for (int digits = 1; digits <= 15; ++digits)
    EXPECT_EQ(with_digits(2.5, digits), "2.5" + std::string(static_cast<std::size_t>(digits) - 1, '0'));
  EXPECT_EQ(with_digits(0.1, 30), "0.100000000000000005551115123126");
  EXPECT_EQ(with_digits(2.0, 0), "2");
}

TEST(NumberFormatting, HasAResultForEveryNumberOfDigits) {
  EXPECT_EQ(with_digits(2.5, 5000), "2.5" + std::string(4999, '0'));
  EXPECT_EQ(with_digits(2.5, INT_MIN), "0.000000");
  EXPECT_EQ(with_digits(-infinity, INT_MAX), "-inf");
  for (const int digits : {2000000000, INT_MAX}) {
    bool thrown = false;
    try {
      with_digits(2.5, digits);
    } catch (CMemoryException* exception) {
      exception->Delete();
      thrown = true;
    }
    EXPECT_TRUE(thrown) << digits;
  }
}

// Rounded to tens, then printed with the six decimals of printf.
TEST(NumberFormatting, RoundsToTensWhereDigitsAreNegative) {
  EXPECT_EQ(with_digits(1234.5, -1), "1230.000000");
  EXPECT_EQ(with_digits(1250.0, -2), "1300.000000");
}

// Kept for compatibility: "neutral" texts also have the decimal point of the run-time library. Only the digits differ.
TEST(NumberFormatting, PrintsThePointOfTheLocaleThatIsSet) {
  const DecimalComma locale;
  ASSERT_TRUE(locale.made());
  Formatting formatting(2, 3, KRV_Inches, KRV_Millimetres);
  EXPECT_EQ(formatting.plain(1.5), "1,50");
  EXPECT_EQ(formatting.with_units(1.0), "25,40");
  EXPECT_EQ(formatting.neutral(1.5), "1,500");
}

TEST(NumberFormatting, IsAPlainValue) {
  EXPECT_TRUE(std::is_trivially_copyable_v<kexNumberFormatting>);
  EXPECT_FALSE(std::is_default_constructible_v<kexNumberFormatting>);
  EXPECT_EQ(sizeof(kexNumberFormatting), 16u);
  Formatting first(1, 2, KRV_Inches, KRV_Millimetres);
  Formatting second(first);
  first.set_to_units(KRV_Inches);
  EXPECT_EQ(second.with_units(1.0), "25.4");
}

TEST_F(EditControls, AreReadWithTheSeparatorAsThePoint) {
  EXPECT_EQ(read("3,75", ","), 3.75);
  EXPECT_EQ(read("3,75", "."), 3.0);
  EXPECT_EQ(read("3.75", ","), 3.75);
  EXPECT_EQ(read("3<->75", "<->"), 3.75);
  EXPECT_EQ(read("3.75", ""), 3.75);
  EXPECT_EQ(read("3.75", nullptr), 3.75);
  EXPECT_EQ(read("1,2,3", ","), 1.2);
}

TEST_F(EditControls, AreReadAsStrtodReads) {
  EXPECT_EQ(read("1.5e3"), 1500.0);
  EXPECT_EQ(read("  \t+12 mm"), 12.0);
  EXPECT_EQ(read("-.5"), -0.5);
  EXPECT_EQ(read("5e"), 5.0);
  EXPECT_EQ(read("1e400"), infinity);
  EXPECT_EQ(read("-1e400"), -infinity);
  EXPECT_EQ(read("1e-400"), 0.0);
}

TEST_F(EditControls, AreZeroWithoutANumber) {
  EXPECT_EQ(read("abc"), 0.0);
  EXPECT_EQ(read(""), 0.0);
  EXPECT_EQ(read("-"), 0.0);
  EXPECT_EQ(Numbers::getValue(nullptr, "."), 0.0);
  EXPECT_EQ(Numbers::getValue(nullptr, false, "."), 0.0);
  const Edit none;
  EXPECT_EQ(Numbers::getValue(&none, "."), 0.0);
  DestroyWindow(edit_);
  EXPECT_EQ(Numbers::getValue(&edit_, "."), 0.0);
}

TEST_F(EditControls, LoseTheSignUnlessNegativeNumbersAreAllowed) {
  SetWindowTextA(edit_, "-2.5");
  EXPECT_EQ(Numbers::getValue(&edit_, false, "."), 2.5);
  EXPECT_EQ(Numbers::getValue(&edit_, true, "."), -2.5);
  SetWindowTextA(edit_, "2.5");
  EXPECT_EQ(Numbers::getValue(&edit_, false, "."), 2.5);
}

// Kept for compatibility: callers see negative zero keep its sign, since it is not less than zero.
TEST_F(EditControls, KeepANegativeZero) {
  SetWindowTextA(edit_, "-0");
  EXPECT_TRUE(std::signbit(Numbers::getValue(&edit_, false, ".")));
  EXPECT_EQ(std::string(Numbers::putValue(nullptr, -0.0, false, ".", 1)), "-0.0");
}

TEST_F(EditControls, AreReadUpTo260Characters) {
  const auto number = [](std::size_t length) { return "0." + std::string(length - 2, '1'); };
  EXPECT_EQ(read("7"), 7.0);
  for (const std::size_t length : {258u, 259u, 260u, 261u, 300u}) {
    // The last characters are an exponent: truncation would change the number.
    const std::string text = std::string(length - 3, '0') + "1e2";
    const double expected = length == 261 ? 1.0 : length > 261 ? 0.0 : 100.0;
    EXPECT_EQ(read(text), expected) << length;
    EXPECT_EQ(read(number(length)), std::stod(number(std::min<std::size_t>(length, 260)))) << length;
  }
}

TEST_F(EditControls, LeaveNothingOfALongerTextBehind) {
  EXPECT_EQ(read("123456789012345678901234567890"), 123456789012345678901234567890.0);
  EXPECT_EQ(read("12"), 12.0);
  EXPECT_EQ(read(""), 0.0);
}

WNDPROC edit_procedure = nullptr;
std::vector<char> line_given;
LRESULT CALLBACK record_line(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == EM_GETLINE) {
    const auto* const line = reinterpret_cast<const char*>(l);
    line_given.assign(line, line + 261);
  }
  return CallWindowProcA(edit_procedure, window, message, w, l);
}

// The control terminates neither a text of 260 characters nor a shorter one.
TEST_F(EditControls, AreGivenALineOfZerosAfterItsSize) {
  edit_procedure =
      reinterpret_cast<WNDPROC>(SetWindowLongPtrA(edit_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(record_line)));
  EXPECT_EQ(read("12"), 12.0);
  std::vector<char> expected(261, '\0');
  expected[0] = 260 & 0xFF, expected[1] = 260 >> 8;
  EXPECT_EQ(line_given, expected);
}

TEST_F(EditControls, WithSeveralLinesAreReadInTheFirst) {
  SetWindowTextA(lines_, "1.5\r\n2.5");
  EXPECT_EQ(Numbers::getValue(&lines_, "."), 1.5);
  SetWindowTextA(lines_, "\r\n2.5");
  EXPECT_EQ(Numbers::getValue(&lines_, "."), 0.0);
}

TEST_F(EditControls, ShowTheTextThatIsReturned) {
  EXPECT_EQ(std::string(Numbers::putValue(&edit_, 3.14159, ",", 2)), "3,14");
  EXPECT_EQ(window_text(edit_), "3,14");
  EXPECT_EQ(std::string(Numbers::putValue(&edit_, -2.0, false, ".", 1)), "2.0");
  EXPECT_EQ(window_text(edit_), "2.0");
  EXPECT_EQ(std::string(Numbers::putValue(&edit_, -2.0, true, ".", 1)), "-2.0");
  EXPECT_EQ(window_text(edit_), "-2.0");
  Edit none;
  EXPECT_EQ(std::string(Numbers::putValue(&none, 1.0, ".", 1)), "1.0");
}

TEST_F(EditControls, TakeWhatTheyGave) {
  for (const char* separator : {".", ",", "<->", "'"})
    for (const double value : {0.0, 1.0, -3.75, 123456.125, 1e15}) {
      Numbers::putValue(&edit_, value, separator, 3);
      EXPECT_EQ(Numbers::getValue(&edit_, separator), value) << separator;
    }
}

TEST_F(EditControls, DoNotAskTheLocaleOfTheRunTimeLibrary) {
  const DecimalComma locale;
  ASSERT_TRUE(locale.made());
  EXPECT_EQ(std::string(Numbers::putValue(&edit_, 1.5, ".", 2)), "1.50");
  EXPECT_EQ(read("1.5"), 1.5);
  EXPECT_EQ(read("1,5"), 1.0);
}

TEST_F(EditControls, DoNotAskTheCodePageOfTheThread) {
  const LCID before = GetThreadLocale();
  // Western European, Russian and Japanese: code pages 1252, 1251 and 932.
  for (const LCID language : {0x0409u, 0x0419u, 0x0411u}) {
    ASSERT_TRUE(SetThreadLocale(language));
    EXPECT_EQ(std::string(Numbers::putValue(&edit_, 1.5, ",", 2)), "1,50");
    EXPECT_EQ(Numbers::getValue(&edit_, ","), 1.5);
  }
  SetThreadLocale(before);
}

TEST_F(EditControls, LeaveNothingBehind) {
  const auto round = [this] {
    for (int i = 0; i < 1000; ++i) {
      Numbers::putValue(&edit_, 1.5, ",", 2);
      Numbers::getValue(&edit_, ",");
    }
  };
  round();
  const ResourceCounts counts;
  round();
  EXPECT_EQ(ResourceCounts(), counts);
}

TEST(PutValue, IsAPureFormatterWithoutAControl) {
  EXPECT_EQ(put(3.14159, ",", 2), "3,14");
  EXPECT_EQ(std::string(Numbers::putValue(nullptr, -1.005, false, ",", 3)), "1,005");
  EXPECT_EQ(std::string(Numbers::putValue(nullptr, -1.005, true, ",", 3)), "-1,005");
}

TEST(PutValue, KeepsAllDigits) {
  EXPECT_EQ(put(2.0, ".", 0), "2");
  EXPECT_EQ(put(2.5, ".", 3), "2.500");
  EXPECT_EQ(put(0.1, ".", 30), "0.100000000000000005551115123126");
  EXPECT_EQ(put(2.0, ".", -1), "2.000000");  // a negative precision is ignored
}

// By design the number is not rounded before it is printed: a control shows the text of printf. Compare
// NumberFormatting.
TEST(PutValue, PrintsTiesToEven) {
  EXPECT_EQ(put(0.125, ".", 2), "0.12");
  EXPECT_EQ(put(0.375, ".", 2), "0.38");
  EXPECT_EQ(put(2.5, ".", 0), "2");
}

TEST(PutValue, PrintsEveryDoubleThereIs) {
  EXPECT_EQ(put(0.0, ".", 1), "0.0");
  EXPECT_EQ(put(-0.0, ".", 1), "-0.0");
  EXPECT_EQ(put(std::numeric_limits<double>::denorm_min(), ".", 3), "0.000");
  EXPECT_EQ(put(infinity, ".", 2), "inf");
  EXPECT_EQ(put(-infinity, ".", 2), "-inf");
  EXPECT_EQ(put(nan, ".", 2), "nan");
  EXPECT_EQ(std::string(Numbers::putValue(nullptr, -infinity, false, ".", 2)), "inf");
}

TEST(PutValue, CutsTheTextAt259Characters) {
  const std::string whole = with_digits(1e308, 2);
  EXPECT_EQ(put(1e308, ",", 2), whole.substr(0, 259));
  EXPECT_EQ(put(0.5, ".", 257), "0.5" + std::string(256, '0'));
  EXPECT_EQ(put(0.5, ".", 258), "0.5" + std::string(256, '0'));
  EXPECT_EQ(put(0.5, "<->", 2000000000), "0<->5" + std::string(256, '0'));
}

TEST(PutValue, PutsInSeparatorsOfAnyLength) {
  EXPECT_EQ(put(1.5, "<->", 1), "1<->5");
  EXPECT_EQ(put(1.5, "", 1), "15");
  EXPECT_EQ(put(1.5, nullptr, 1), "15");
}

TEST(DecimalSeparator, IsTheUsers) {
  char text[16] = "";
  ASSERT_GT(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, text, sizeof text), 0);
  EXPECT_STREQ(Numbers::get_decimal_seperator(), text);
}

// Replaces the system's result. The user's settings are not changed, since other programs read them.
class DecimalSeparatorOfTheSystem : public testing::Test {
 protected:
  static int WINAPI answer(LCID locale, LCTYPE type, LPSTR text, int size) {
    EXPECT_EQ(locale, DWORD{LOCALE_USER_DEFAULT});
    EXPECT_EQ(type, DWORD{LOCALE_SDECIMAL});
    if (!separator) return 0;
    const int length = static_cast<int>(std::string(separator).size()) + 1;
    if (!size) return length;
    if (size < length) return 0;
    std::copy_n(separator, length, text);
    return length;
  }

  inline static const char* separator = nullptr;
  ImportOverride override_{"kexlib.dll", "kernel32.dll", "GetLocaleInfoA", answer};
};

TEST_F(DecimalSeparatorOfTheSystem, IsTakenWhole) {
  ASSERT_TRUE(override_.made());
  for (const char* each : {",", "::", "<->", "dot"}) {
    separator = each;
    EXPECT_STREQ(Numbers::get_decimal_seperator(), each);
    EXPECT_EQ(put(2.5, Numbers::get_decimal_seperator(), 1), "2" + std::string(each) + "5");
  }
}

TEST_F(DecimalSeparatorOfTheSystem, IsAPointWhereThereIsNone) {
  ASSERT_TRUE(override_.made());
  separator = nullptr;
  EXPECT_STREQ(Numbers::get_decimal_seperator(), ".");
  separator = "";
  EXPECT_STREQ(Numbers::get_decimal_seperator(), ".");
}

}  // namespace
