// A number that the user types, as both formatters write it: rounded, converted, and with another separator.
#include <kexlib/controls.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <string>
#include <vector>

namespace {

enum { id_number = 100, id_negative, id_digits, id_from, id_to, id_rounded, id_converted, id_neutral, id_put };

constexpr int most_digits = 6, first_digits = 2, neutral_digits = 4;
constexpr char separator_shown[] = "::";

class Formatting : public kexNumberFormatting {
 public:
  using kexNumberFormatting::format_double_with_units;
  using kexNumberFormatting::format_neutral_double;
  using kexNumberFormatting::kexNumberFormatting;
  CStringA rounded(double value) { return format_double(value); }
};

class NumericFormattingPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(NumericFormattingPage)
    COMMAND_HANDLER(id_number, EN_CHANGE, OnChange)
    COMMAND_ID_HANDLER(id_negative, OnChange)
    COMMAND_HANDLER(id_digits, CBN_SELCHANGE, OnChange)
    COMMAND_HANDLER(id_from, CBN_SELCHANGE, OnChange)
    COMMAND_HANDLER(id_to, CBN_SELCHANGE, OnChange)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("&Number:", 120);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL | ES_RIGHT, id_number, 100);
    add(WC_BUTTON, "N&egative numbers too", BS_AUTOCHECKBOX | WS_TABSTOP, id_negative, 150);
    new_line();
    add_label("&Digits:", 120);
    std::vector<std::string> digits;
    for (int i = 0; i <= most_digits; ++i) digits.push_back(std::to_string(i));
    add_choice(id_digits, 100, digits, first_digits);
    add_label("&from", 40);
    add_choice(id_from, 110, {"inches", "millimetres"}, KRV_Inches);
    add_label("&to", 20);
    add_choice(id_to, 110, {"inches", "millimetres"}, KRV_Millimetres);
    new_line(20);
    add_result("Rounded:", id_rounded);
    add_result("Converted:", id_converted);
    add_result("With four digits:", id_neutral);
    add_result("Separated by \"::\":", id_put);

    // The user types with the separator of the locale.
    WTL::CEdit number(GetDlgItem(id_number));
    kexNumericFormatting::putValue(&number, 0.125, kexNumericFormatting::get_decimal_seperator(), 3);
    show();
  }

  void add_choice(int id, int width, const std::vector<std::string>& items, int selected) {
    WTL::CComboBox list = add(WC_COMBOBOX, "", WS_TABSTOP | CBS_DROPDOWNLIST, id, width).m_hWnd;
    list.SetWindowPos(nullptr, 0, 0, width, 200, SWP_NOMOVE | SWP_NOZORDER);  // with the list that drops down
    for (const std::string& item : items) list.AddString(item.c_str());
    list.SetCurSel(selected);
  }

  void add_result(const char* label, int id) {
    add_label(label, 120);
    add(WC_EDIT, "", WS_BORDER | ES_READONLY | ES_RIGHT, id, 100);
    new_line();
  }

  int choice(int id) const { return WTL::CComboBox(GetDlgItem(id)).GetCurSel(); }

  void show() {
    const WTL::CEdit number(GetDlgItem(id_number));
    const bool negative = is_checked(id_negative);
    const double value =
        kexNumericFormatting::getValue(&number, negative, kexNumericFormatting::get_decimal_seperator());
    const int digits = choice(id_digits);
    Formatting formatting(digits, neutral_digits, static_cast<KRV_Units>(choice(id_from)),
                          static_cast<KRV_Units>(choice(id_to)));
    set_text(id_rounded, formatting.rounded(value));
    set_text(id_converted, formatting.format_double_with_units(value));
    set_text(id_neutral, formatting.format_neutral_double(value));
    WTL::CEdit put(GetDlgItem(id_put));
    kexNumericFormatting::putValue(&put, value, negative, separator_shown, digits);
  }

  LRESULT OnChange(WORD, WORD, HWND, BOOL&) {
    show();
    return 0;
  }
};

void tour(gallery::Tour& user) {
  const std::string separator = kexNumericFormatting::get_decimal_seperator().GetString();

  // Halves: the first formatter rounds them away from zero, the second to even digits.
  user.check_text(id_rounded, "0.13");
  user.check_text(id_put, "0::12");
  user.check_text(id_neutral, "0.1250");
  user.write(id_number, "1" + separator + "5mm");
  user.check_text(id_rounded, "1.50");
  user.check_text(id_converted, "38.10");
  user.take_picture("numeric_formatting");

  user.click(id_to);
  user.press(VK_UP);
  user.press(VK_RETURN);
  user.check_text(id_converted, "1.50");
  user.click(id_from);
  user.press(VK_DOWN);
  user.press(VK_RETURN);
  user.write(id_number, "254");
  user.check_text(id_converted, "10.00");

  user.write(id_number, "-2" + separator + "5");
  user.check_text(id_rounded, "2.50");
  user.click(id_negative);
  user.check_text(id_rounded, "-2.50");
  user.check_text(id_put, "-2::50");
  user.click(id_digits);
  user.press(VK_HOME);
  user.press(VK_RETURN);
  user.check_text(id_rounded, "-3");
  user.check_text(id_put, "-2");

  user.write(id_number, "many");
  user.check_text(id_rounded, "0");
}

const gallery::Registration numeric_formatting{
    "controls", "Numbers as text",
    "Two formatters write a number with a fixed number of digits: one rounds halves away from zero and converts units, "
    "the other reads and writes edit controls with any decimal separator.",
    gallery::make<NumericFormattingPage>, tour};

}  // namespace
