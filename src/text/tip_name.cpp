#include <kexlib/text/tip_name.h>

#include <module/process_end.h>
#include <support/fixed_text.h>
#include <text/number_texts.h>

#include <charconv>

using namespace kexlib;

namespace {

// The texts of A and B. They live as long as the library.
struct TipNumbers {
  constexpr TipNumbers() = default;
  TipNumbers(const TipNumbers&) = delete;
  TipNumbers& operator=(const TipNumbers&) = delete;
  ~TipNumbers() {
    if (process_is_ending()) texts.abandon();
  }

  NumberTexts texts;
};
constinit TipNumbers tip_numbers;

// A text that is known when this is compiled, with its length.
template <std::size_t size>
void append(CStringA& text, const char (&literal)[size]) {
  text.Append(literal, static_cast<int>(size) - 1);
}

void append_narrowed(CStringA& text, const CComBSTR& wide) {
  if (!wide) return;
  const int start = text.GetLength();
  // ASCII characters are the same in every ANSI code page. Copying them is faster than a system call.
  char* const narrow = text.GetBuffer(start + static_cast<int>(wide.Length())) + start;
  int done = 0;
  for (; wide.m_str[done] && wide.m_str[done] < 0x80; ++done) narrow[done] = static_cast<char>(wide.m_str[done]);
  const bool whole = !wide.m_str[done];
  text.ReleaseBufferSetLength(whole ? start + done : start);
  if (!whole) text += CStringA(wide);
}

void append_number(CStringA& text, long number) {
  char digits[16];
  const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text.Append(digits, static_cast<int>(end - digits));
}

void append_names(CStringA& text, const CComBSTR& name, const CComBSTR& subName) {
  append_narrowed(text, name);
  if (!subName.Length()) return;
  if (name.Length()) append(text, " - ");
  append_narrowed(text, subName);
}

void append_a_and_b(CStringA& text, double a, double b) {
  append(text, "[ A=");
  text += tip_numbers.texts.text(a);
  append(text, " B=");
  text += tip_numbers.texts.text(b);
  append(text, " ]");
}

void append_d(CStringA& text, double d, const CComBSTR& unit) {
  append(text, " [ D ");
  text += fixed_text(d, 4);
  append(text, " ");
  if (!unit)
    append(text, "(null)");  // kept for compatibility: callers see what printf prints
  else
    append_narrowed(text, unit);
  append(text, " ]");
}

}  // namespace

CStringA atl_smart_tip_name_from_parts(CComBSTR& name, long number, CComBSTR& subName, double a, double b,
                                       CComBSTR& dText, double d, bool showAB, bool showD, bool showNames,
                                       bool showNumber) {
  CStringA text;
  text.GetBuffer(120);  // room for most
  if (showNames) append_names(text, name, subName);
  if (showNumber) {
    append(text, " - ");  // by design also without a name: callers append it to their own heading
    append_number(text, number);
  }
  append(text, " ");
  if (showAB) append_a_and_b(text, a, b);
  if (showD) append_d(text, d, dText);
  return text;
}
