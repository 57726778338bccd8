// Numbers read from an edit control: its first 260 characters, with the separator as point, as strtod reads them.
#include <kexlib/controls/numeric_formatting.h>

#include <fuzz/core.h>
#include <fuzz/windows/numeric_locale.h>

#include <bit>
#include <clocale>
#include <cstdlib>

namespace {

using Edit = WTL::CEditT<CWindow>;

Edit& edit_control() {
  static Edit edit(
      CreateWindowExA(0, "EDIT", "", WS_POPUP | ES_AUTOHSCROLL, 0, 0, 100, 20, nullptr, nullptr, nullptr, nullptr));
  return edit;
}

const fuzz::Core core("number_reading", [](fuzz::Input& input) {
  const bool allow_negative = input.flag();
  const fuzz::CommaLocale locale(input.below(4) == 3);
  const std::string usual[] = {".", ",", "'", "<->", ""};
  const unsigned which = input.below(8);
  const std::string separator =
      which < std::size(usual) ? usual[which] : std::string(std::string(input.text(3)).c_str());  // up to a zero
  std::string text(input.text(400));
  std::erase_if(text, [](char each) { return each == '\0' || each == '\r' || each == '\n'; });

  Edit& edit = edit_control();
  SetWindowTextA(edit, text.c_str());
  const double ours = kexNumericFormatting::getValue(&edit, allow_negative, separator.c_str());

  char shown[500];
  GetWindowTextA(edit, shown, sizeof shown);
  const std::string line = fuzz::replaced(std::string(shown).substr(0, 260), separator, ".");
  const _locale_t neutral = _create_locale(LC_NUMERIC, "C");
  double expected = _strtod_l(line.c_str(), nullptr, neutral);
  _free_locale(neutral);
  if (!allow_negative && expected < 0) expected = -expected;
  if (ours != ours && expected != expected) return;
  // As bits: the sign of a zero counts.
  fuzz::expect_same(std::bit_cast<std::uint64_t>(ours), std::bit_cast<std::uint64_t>(expected), text, separator,
                    allow_negative);
});

}  // namespace
