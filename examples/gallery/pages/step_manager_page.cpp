// Steps: a procedure of four steps, one of which is optional.
#include <kexlib/controls.h>

#include <gallery/page.h>
#include <gallery/tour.h>

namespace {

enum {
  id_number = 100,  // the number of the first step; those of the other steps follow
  id_name = 110,
  id_name_label,
  id_length,
  id_length_label,
  id_unit,
  id_color,
  id_color_label,
  id_make,
  id_make_label,
  id_painted,
  id_back,
  id_next,
  id_again,
  id_state
};
constexpr int name = 0, size = 1, painting = 2, making = 3, step_count = 4;

class StepManagerPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(StepManagerPage)
    COMMAND_ID_HANDLER(id_painted, OnPainted)
    COMMAND_ID_HANDLER(id_back, OnBack)
    COMMAND_ID_HANDLER(id_next, OnNext)
    COMMAND_ID_HANDLER(id_again, OnAgain)
    COMMAND_ID_HANDLER(id_make, OnMake)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add(WC_BUTTON, "The part is to be &painted", BS_AUTOCHECKBOX | WS_TABSTOP, id_painted, 200);
    check(id_painted, true);
    new_line(16);
    add_step(name, "It is called", id_name_label);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_name, 160);
    add_step(size, "It is as long as", id_length_label);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_NUMBER, id_length, 60);
    add(WC_STATIC, "millimetres", SS_CENTERIMAGE, id_unit, 80);
    add_step(painting, "It is painted", id_color_label);
    WTL::CComboBox colors = add(WC_COMBOBOX, "", WS_TABSTOP | CBS_DROPDOWNLIST, id_color, 160).m_hWnd;
    colors.SetWindowPos(nullptr, 0, 0, 160, 200, SWP_NOMOVE | SWP_NOZORDER);  // with the list that drops down
    for (const char* color : {"red", "green", "blue"}) colors.AddString(color);
    add_step(making, "Then it can be", id_make_label);
    add(WC_BUTTON, "&Made", WS_TABSTOP, id_make, 100);
    new_line(20);
    take_place(20);
    add(WC_BUTTON, "&Back", WS_TABSTOP, id_back, 80);
    add(WC_BUTTON, "&Next", WS_TABSTOP, id_next, 80);
    add(WC_BUTTON, "&From the start", WS_TABSTOP, id_again, 130);
    new_line(16);
    take_place(20);
    add(WC_STATIC, "", 0, id_state, 400);
    make_steps();
    begin();
  }

  void add_step(int step, const char* words, int id) {
    new_line(12);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_number + step, 20);
    add(WC_STATIC, words, SS_CENTERIMAGE, id, 100);
  }

  void make_steps() {
    steps_.set_parent(m_hWnd);
    for (int step = 0; step < step_count; ++step)
      steps_.create_step()->attach_number_display(static_cast<unsigned>(id_number + step));
    for (const unsigned id : {id_name, id_name_label}) steps_.step(name)->add_control(id);
    for (const unsigned id : {id_length, id_length_label, id_unit}) steps_.step(size)->add_control(id);
    for (const unsigned id : {id_color, id_color_label}) steps_.step(painting)->add_control(id);
    for (const unsigned id : {id_make, id_make_label}) steps_.step(making)->add_control(id);
    steps_.init();
  }

  void begin() {
    set_text(id_name, "");
    set_text(id_length, "");
    WTL::CComboBox(GetDlgItem(id_color)).SetCurSel(0);
    go_to(name);
  }

  // The first visible step before the active one, or -1.
  int previous_step() {
    int step = steps_.get_active_step_idx() - 1;
    while (step >= 0 && !steps_.step(step)->visible()) --step;
    return step;
  }

  void go_to(int step) {
    steps_.goto_step(step);
    constexpr int first_controls[] = {id_name, id_length, id_color, id_make};
    GetDlgItem(first_controls[step]).SetFocus();
    show_state();
  }

  void show_state() {
    int count = 0;
    for (int step = 0; step < step_count; ++step) count += steps_.step(step)->visible() != 0;
    CString state;
    state.Format("Step %d of %d", steps_.step(steps_.get_active_step_idx())->step_number(), count);
    set_text(id_state, state);
    GetDlgItem(id_back).EnableWindow(previous_step() >= 0);
    GetDlgItem(id_next).EnableWindow(steps_.get_next_step_idx() >= 0);
  }

  LRESULT OnPainted(WORD, WORD, HWND, BOOL&) {
    steps_.step(painting)->set_visible(is_checked(id_painted));
    steps_.renumber_steps();
    if (!is_checked(id_painted) && steps_.get_active_step_idx() == painting)
      go_to(making);
    else
      show_state();
    return 0;
  }

  LRESULT OnBack(WORD, WORD, HWND, BOOL&) {
    go_to(previous_step());
    return 0;
  }

  LRESULT OnNext(WORD, WORD, HWND, BOOL&) {
    go_to(steps_.get_next_step_idx());
    return 0;
  }

  LRESULT OnAgain(WORD, WORD, HWND, BOOL&) {
    begin();
    return 0;
  }

  LRESULT OnMake(WORD, WORD, HWND, BOOL&) {
    const CString color = is_checked(id_painted) ? ", " + text_of(id_color) : CString();
    set_text(id_state, text_of(id_name) + ", " + text_of(id_length) + " millimetres" + color + ": made.");
    return 0;
  }

  atlStepManager steps_{nullptr, true};
};

void tour(gallery::Tour& user) {
  const auto enabled = [&](int id, bool is) {
    user.check("the control " + std::to_string(id) + (is ? " is enabled" : " is disabled"),
               [&] { return (IsWindowEnabled(user.control(id)) != 0) == is; });
  };
  const auto numbers = [&](const std::vector<std::string>& expected) {
    for (size_t i = 0; i < expected.size(); ++i) user.check_text(id_number + static_cast<int>(i), expected[i]);
  };

  user.click(id_again);
  user.check_text(id_state, "Step 1 of 4");
  numbers({"1", "2", "3", "4"});
  enabled(id_length, false);
  enabled(id_back, false);
  user.write(id_name, "Bolt");
  user.click(id_next);
  user.check_text(id_state, "Step 2 of 4");
  enabled(id_name, false);
  enabled(id_number + size, true);
  user.write(id_length, "30");
  user.click(id_next);
  user.check_text(id_state, "Step 3 of 4");
  user.press(VK_DOWN);  // the list of colours has the focus
  user.check_text(id_color, "green");
  user.take_picture("step_manager");
  user.click(id_next);
  user.check_text(id_state, "Step 4 of 4");
  enabled(id_next, false);
  user.click(id_make);
  user.check_text(id_state, "Bolt, 30 millimetres, green: made.");

  user.click(id_painted);
  user.check_text(id_state, "Step 3 of 3");
  user.check("the step that is left out is hidden", [&] { return !IsWindowVisible(user.control(id_color)); });
  numbers({"1", "2", "3", "3"});
  user.click(id_make);
  user.check_text(id_state, "Bolt, 30 millimetres: made.");
  user.click(id_back);
  user.check_text(id_state, "Step 2 of 3");
  enabled(id_length, true);
  enabled(id_make, false);
  user.click(id_painted);
  user.check("the step is back", [&] { return IsWindowVisible(user.control(id_color)) != 0; });
  numbers({"1", "2", "3", "4"});
  user.click(id_again);
  user.check_text(id_state, "Step 1 of 4");
}

const gallery::Registration step_manager{
    "controls", "Steps",
    "Steps are gone through one after the other. Those that come later are disabled; one that is hidden is left out.",
    gallery::make<StepManagerPage>, tour};

}  // namespace
