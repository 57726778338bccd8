// Numbers as text for controls: with a separator of their own, in units, rounded or not.
#include <kexlib/controls/numeric_formatting.h>

#include <controls/formatting.h>
#include <fuzz/core.h>
#include <fuzz/windows/numeric_locale.h>
#include <qzutils/round.h>

#include <cstring>

namespace {

const char* separator(fuzz::Input& input, std::string& text) {
  constexpr const char* usual[] = {".", ",", "'", "<->", "..", "", nullptr};
  const unsigned which = input.below(10);
  if (which < std::size(usual)) return usual[which];
  text = input.text(4);
  return text.c_str();  // up to a zero
}

void check_writing(fuzz::Input& input) {
  std::string own;
  const char* const point = separator(input, own);
  const bool allow_negative = input.flag();
  const long digits = input.number<std::int16_t>() % 400;
  const double value = input.real();
  const double written = !allow_negative && value < 0 ? -value : value;
  const std::string text = fuzz::printed(written, static_cast<int>(digits)).substr(0, 259);
  const std::string expected = fuzz::replaced(text, ".", point ? point : "");
  const fuzz::CommaLocale locale(input.flag());
  const CStringA ours = kexNumericFormatting::putValue(nullptr, value, allow_negative, point, digits);
  fuzz::expect_same(std::string(ours, static_cast<std::size_t>(ours.GetLength())), expected, value, digits);
}

void check_formatting(fuzz::Input& input) {
  const int digits = static_cast<int>(input.below(30)) - 5, neutral_digits = static_cast<int>(input.below(30)) - 5;
  const auto from = KRV_Units(input.below(3)), to = KRV_Units(input.below(3));
  const double value = input.real();
  Formatting formatting(digits, neutral_digits, from, to);
  const fuzz::CommaLocale locale(input.flag());
  const auto expected = [](double number, int places) {
    return fuzz::printed(qzuRound::round_to(number, places), places);
  };
  double converted = value;
  if (from == KRV_Inches && to == KRV_Millimetres) converted = value * 25.4;
  if (from == KRV_Millimetres && to == KRV_Inches) converted = value / 25.4;
  fuzz::expect_same(formatting.plain(value), expected(value, digits), value, digits);
  fuzz::expect_same(formatting.neutral(value), expected(value, neutral_digits), value, neutral_digits);
  fuzz::expect_same(formatting.with_units(value), expected(converted, digits), value, digits, int{from}, int{to});
}

const fuzz::Core core("number_writing", [](fuzz::Input& input) {
  do {
    if (input.flag())
      check_writing(input);
    else
      check_formatting(input);
  } while (!input.empty());
});

}  // namespace
