#include <kexlib/controls/numeric_formatting.h>

#include <neutralfmt/vsprintf.h>
#include <qzutils/round.h>
#include <support/fixed_text.h>

#include <clocale>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

using namespace kexlib;

namespace {

constexpr double millimetres_per_inch = 25.4;
constexpr int line_length = 260;

// Formats in the "C" locale. A text of 260 characters or more is truncated.
int neutral_format(CStringA& text, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = NEUTRAL_FMT::vsprintf(text.GetBuffer(line_length), line_length, format, arguments);
  va_end(arguments);
  text.ReleaseBuffer();
  return length;
}

double parse(const char* text) {
  const _locale_t neutral = _create_locale(LC_NUMERIC, "C");
  const double value = _strtod_l(text, nullptr, neutral);
  _free_locale(neutral);
  return value;
}

// These two are the system's calls, not those of the control's class, which assert the window first: here the system
// looks for it. noexcept as those are: no exception of a window procedure passes through the system.

// If the window is gone, the size stays where the text would be, and is no number.
void read_line(HWND edit, char* line) noexcept {
  const WORD size = line_length;
  std::memcpy(line, &size, sizeof size);
  SendMessageA(edit, EM_GETLINE, 0, reinterpret_cast<LPARAM>(line));
}

void show(HWND edit, const char* text) noexcept { SetWindowTextA(edit, text); }

// Not std::fabs: negative zero keeps its sign.
double without_sign(double value) { return value < 0 ? -value : value; }

}  // namespace

kexNumberFormatting::kexNumberFormatting(int decimals, int neutral_decimals, KRV_Units from, KRV_Units to)
    : decimal_places_(decimals), neutral_decimal_places_(neutral_decimals), from_units_(from), to_units_(to) {}

void kexNumberFormatting::set_from_units(KRV_Units units) { from_units_ = units; }

void kexNumberFormatting::set_to_units(KRV_Units units) { to_units_ = units; }

CStringA kexNumberFormatting::format_double(double value) { return format_double(value, decimal_places_); }

CStringA kexNumberFormatting::format_double_with_units(double value) {
  if (from_units_ == KRV_Inches && to_units_ == KRV_Millimetres)
    value *= millimetres_per_inch;
  else if (from_units_ == KRV_Millimetres && to_units_ == KRV_Inches)
    value /= millimetres_per_inch;
  return format_double(value, decimal_places_);
}

// Kept for compatibility: callers see the locale's decimal point in "neutral" texts too.
CStringA kexNumberFormatting::format_neutral_double(double value) {
  return format_double(value, neutral_decimal_places_);
}

CStringA kexNumberFormatting::format_double(double value, int digits) {
  return fixed_text(qzuRound::round_to(value, digits), digits);
}

double kexNumericFormatting::getValue(const WTL::CEditT<CWindow>* edit, const char* separator) {
  char line[line_length + 1] = {};  // the control does not terminate the text
  if (edit) read_line(edit->m_hWnd, line);
  CStringA text(line);
  text.Replace(separator, ".");
  return parse(text);
}

double kexNumericFormatting::getValue(const WTL::CEditT<CWindow>* edit, bool allow_negative, const char* separator) {
  const double value = getValue(edit, separator);
  return allow_negative ? value : without_sign(value);
}

CStringA kexNumericFormatting::putValue(WTL::CEditT<CWindow>* edit, double value, const char* separator, long digits) {
  CStringA text;
  neutral_format(text, "%.*lf", static_cast<int>(digits), value);
  text.Replace(".", separator);
  if (edit) show(edit->m_hWnd, text);
  return text;
}

CStringA kexNumericFormatting::putValue(WTL::CEditT<CWindow>* edit, double value, bool allow_negative,
                                        const char* separator, long digits) {
  return putValue(edit, allow_negative ? value : without_sign(value), separator, digits);
}

CStringA kexNumericFormatting::get_decimal_seperator() {
  const int size = GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, nullptr, 0);
  CStringA separator;
  GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator.GetBuffer(size), size);
  separator.ReleaseBuffer();
  return separator.IsEmpty() ? CStringA(".") : separator;
}
