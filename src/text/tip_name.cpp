#include <kexlib/text/tip_name.h>

#include <module/fixed_text.h>
#include <module/process_state.h>

#include <charconv>

using namespace kexlib;

namespace {

void append_narrowed(CStringA& text, BSTR wide) {
  const int length = wide ? lstrlenW(wide) : 0;
  const int start = text.GetLength();
  // Characters of ASCII are the same in every code page that a thread can have; the system takes its time for them.
  char* const narrow = text.GetBuffer(start + length) + start;
  int done = 0;
  while (done < length && wide[done] < 0x80) {
    narrow[done] = static_cast<char>(wide[done]);
    ++done;
  }
  text.ReleaseBufferSetLength(done == length ? start + length : start);
  if (done < length) text += CStringA(wide);
}

void append_number(CStringA& text, long number) {
  char digits[16];
  const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text.Append(digits, static_cast<int>(end - digits));
}

void append_names(CStringA& text, const CComBSTR& name, const CComBSTR& subName) {
  append_narrowed(text, name);
  if (!subName.Length()) return;
  if (name.Length()) text += " - ";
  append_narrowed(text, subName);
}

void append_a_and_b(CStringA& text, double a, double b) {
  text += "[ A=";
  text += module::tip_numbers.text(a);
  text += " B=";
  text += module::tip_numbers.text(b);
  text += " ]";
}

void append_d(CStringA& text, double d, const CComBSTR& unit) {
  text += " [ D ";
  text += module::fixed_text(d, 4);
  text += " ";
  if (!unit)
    text += "(null)";  // as printf says of no text: that is meant
  else
    append_narrowed(text, unit);
  text += " ]";
}

}  // namespace

CStringA atl_smart_tip_name_from_parts(CComBSTR& name, long number, CComBSTR& subName, double a, double b,
                                       CComBSTR& dText, double d, bool showAB, bool showD, bool showNames,
                                       bool showNumber) {
  CStringA text;
  text.GetBuffer(120);  // room for most
  if (showNames) append_names(text, name, subName);
  if (showNumber) {
    text += " - ";  // also where no name stands before it: that is meant
    append_number(text, number);
  }
  text += " ";
  if (showAB) append_a_and_b(text, a, b);
  if (showD) append_d(text, d, dText);
  return text;
}
