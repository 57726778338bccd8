// Numbers: a length in inches and in millimetres. Typing in one box updates the other.
#include <kexlib/controls.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

enum { id_inches = 100, id_millimetres, id_bar, id_negative, id_places };

constexpr int most_places = 6;
constexpr int pixels_per_inch = 96, longest_bar = 640, bar_height = 12;

// Converts values of one unit to the other.
class Length : public kexNumberFormatting {
 public:
  Length(KRV_Units from, KRV_Units to, int places) : kexNumberFormatting(places, places, from, to) {}
  double converted(double value) { return std::strtod(format_double_with_units(value), nullptr); }
};

class NumericEditBoxPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(NumericEditBoxPage)
    COMMAND_HANDLER(id_inches, EN_CHANGE, OnInches)
    COMMAND_HANDLER(id_millimetres, EN_CHANGE, OnMillimetres)
    COMMAND_ID_HANDLER(id_negative, OnNegative)
    COMMAND_HANDLER(id_places, CBN_SELCHANGE, OnPlaces)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("&Length:", 90);
    add_box(inches_, id_inches);
    add_label("inches  =", 60);
    add_box(millimetres_, id_millimetres);
    add_label("millimetres", 80);
    new_line(12);
    add(WC_STATIC, "", SS_BLACKRECT, id_bar, 1, bar_height);
    new_line(12);
    add_label("&Decimal places:", 90);
    WTL::CComboBox places = add(WC_COMBOBOX, "", WS_TABSTOP | CBS_DROPDOWNLIST, id_places, 60).m_hWnd;
    places.SetWindowPos(nullptr, 0, 0, 60, 200, SWP_NOMOVE | SWP_NOZORDER);  // with the list that drops down
    for (int i = 0; i <= most_places; ++i) places.AddString(std::to_string(i).c_str());
    places.SetCurSel(inches_.get_decimal_places());
    add(WC_BUTTON, "&Negative lengths too", BS_AUTOCHECKBOX | WS_TABSTOP, id_negative, 140);

    for (kexNumericEditBox* box : {&inches_, &millimetres_}) box->allow_negative_values(false);
    inches_.set_value(2.5);
    follow(inches_, millimetres_);
  }

  void add_box(kexNumericEditBox& box, int id) {
    box.SubclassWindow(add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL | ES_RIGHT, id, 90));
  }

  // Shows the same length in the other box, in its unit, and on the bar.
  void follow(kexNumericEditBox& changed, kexNumericEditBox& other) {
    const bool is_inches = &changed == &inches_;
    Length length(is_inches ? KRV_Inches : KRV_Millimetres, is_inches ? KRV_Millimetres : KRV_Inches, most_places);
    other.set_value(length.converted(changed.get_value()));
    const double pixels = std::clamp(inches_.get_value() * pixels_per_inch, 0.0, double{longest_bar});
    GetDlgItem(id_bar).SetWindowPos(nullptr, 0, 0, static_cast<int>(std::lround(pixels)), bar_height,
                                    SWP_NOMOVE | SWP_NOZORDER);
  }

  // Only the box with the focus updates the other one.
  LRESULT OnInches(WORD, WORD, HWND box, BOOL&) {
    if (::GetFocus() == box) follow(inches_, millimetres_);
    return 0;
  }

  LRESULT OnMillimetres(WORD, WORD, HWND box, BOOL&) {
    if (::GetFocus() == box) follow(millimetres_, inches_);
    return 0;
  }

  LRESULT OnNegative(WORD, WORD, HWND, BOOL&) {
    for (kexNumericEditBox* box : {&inches_, &millimetres_}) box->allow_negative_values(is_checked(id_negative));
    return 0;
  }

  LRESULT OnPlaces(WORD, WORD, HWND list, BOOL&) {
    for (kexNumericEditBox* box : {&inches_, &millimetres_}) box->set_decimal_places(WTL::CComboBox(list).GetCurSel());
    return 0;
  }

  kexNumericEditBox inches_, millimetres_;
};

void tour(gallery::Tour& user) {
  const auto number =
      [separator = std::string(kexNumericFormatting::get_decimal_seperator().GetString())](const std::string& text) {
        const size_t point = text.find('.');
        return point == std::string::npos ? text : text.substr(0, point) + separator + text.substr(point + 1);
      };
  const auto bar = [&](int width) {
    return [&user, width] {
      RECT place;
      GetWindowRect(user.control(id_bar), &place);
      return place.right - place.left == width;
    };
  };

  user.write(id_inches, number("1.5"));
  user.check_text(id_millimetres, number("38.100"));
  user.press(VK_TAB);
  user.check_text(id_inches, number("1.500"));
  user.check("the bar is an inch and a half long", bar(144));

  user.write(id_millimetres, number("127mm"));
  user.check_text(id_inches, number("5.000"));
  user.press(VK_TAB);
  user.check_text(id_millimetres, number("127.000"));
  user.check("the bar is five inches long", bar(480));
  user.take_picture("numeric_edit_box");

  user.write(id_inches, "many");
  user.press(VK_TAB);
  user.check_text(id_inches, number("0.000"));

  user.write(id_millimetres, number("-50.8"));
  user.press(VK_TAB);
  user.check_text(id_millimetres, number("50.800"));
  user.check_text(id_inches, number("2.000"));
  user.click(id_negative);
  user.write(id_inches, "-2");
  user.press(VK_TAB);
  user.check_text(id_inches, number("-2.000"));
  user.check_text(id_millimetres, number("-50.800"));
  user.click(id_negative);

  user.write(id_inches, "1");
  user.check_text(id_millimetres, number("25.400"));
  user.click(id_places);
  user.press(VK_HOME);
  user.press(VK_DOWN);
  user.press(VK_RETURN);
  user.check_text(id_millimetres, number("25.4"));
  user.press(VK_DOWN);
  user.press(VK_DOWN);
  user.check_text(id_millimetres, number("25.400"));
}

const gallery::Registration numeric_edit_box{
    "controls", "Numeric edit boxes",
    "A field reads whatever the user types as a number, and shows it with the user's decimal separator.",
    gallery::make<NumericEditBoxPage>, tour};

}  // namespace
