// Tip names: the line that names an object in a tool tip, composed of the selected parts.
#include <kexlib/text.h>

#include <atlcomcli.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <cstdlib>

namespace {

enum {
  id_name = 100,
  id_sub_name,
  id_number,
  id_a,
  id_b,
  id_distance,
  id_unit,
  id_show_names = 200,
  id_show_number,
  id_show_ab,
  id_show_distance,
  id_line
};

class TipNamePage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(TipNamePage)
    COMMAND_CODE_HANDLER(EN_CHANGE, OnChange)
    COMMAND_RANGE_HANDLER(id_show_names, id_show_distance, OnChange)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_show_box("&Names", id_show_names);
    add_field("Left", id_name, 120);
    add_field("Upper", id_sub_name, 120);
    new_line();
    add_show_box("N&umber", id_show_number);
    add_field("3", id_number, 120);
    new_line();
    add_show_box("&A and B", id_show_ab);
    add_field("1.26", id_a, 120);
    add_field("2", id_b, 120);
    new_line();
    add_show_box("&D and its unit", id_show_distance);
    add_field("0.5", id_distance, 120);
    add_field("mm", id_unit, 120);
    new_line(24);
    add_label("The tip", 120);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY | ES_AUTOHSCROLL, id_line, 400);
    complete_ = true;
    show();
  }

  void add_show_box(const char* text, int id) {
    add(WC_BUTTON, text, WS_TABSTOP | BS_AUTOCHECKBOX, id, 120);
    check(id, true);
  }

  void add_field(const char* text, int id, int width) {
    add(WC_EDIT, text, WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id, width);
  }

  LRESULT OnChange(WORD, WORD control, HWND, BOOL&) {
    if (control != id_line && complete_) show();
    return 0;
  }

  void show() {
    ATL::CComBSTR name(text_of(id_name)), sub_name(text_of(id_sub_name)), unit(text_of(id_unit));
    set_text(id_line, atl_smart_tip_name_from_parts(name, std::atol(text_of(id_number)), sub_name, number_of(id_a),
                                                    number_of(id_b), unit, number_of(id_distance),
                                                    is_checked(id_show_ab), is_checked(id_show_distance),
                                                    is_checked(id_show_names), is_checked(id_show_number)));
  }

  double number_of(int id) const { return std::atof(text_of(id)); }

  bool complete_ = false;  // all controls exist
};

void tour(gallery::Tour& user) {
  user.check_text(id_line, "Left - Upper - 3 [ A=1.3 B=2.0 ] [ D 0.5000 mm ]");
  user.write(id_name, "Right");
  user.check_text(id_line, "Right - Upper - 3 [ A=1.3 B=2.0 ] [ D 0.5000 mm ]");
  user.take_picture("tip_name");
  user.click(id_show_ab);
  user.check_text(id_line, "Right - Upper - 3  [ D 0.5000 mm ]");
  user.click(id_show_distance);
  user.click(id_show_number);
  user.check_text(id_line, "Right - Upper ");
  for (const int box : {id_show_ab, id_show_distance, id_show_number}) user.click(box);
  user.write(id_name, "Left");
  user.check_text(id_line, "Left - Upper - 3 [ A=1.3 B=2.0 ] [ D 0.5000 mm ]");
}

const gallery::Registration tip_name{
    "text", "Tip names", "The line that names an object in a tool tip, from as many of its parts as are wanted.",
    gallery::make<TipNamePage>, tour};

}  // namespace
