// GUI tools: static functions for the controls of dialogs.
#include <kexlib/windowtools.h>

#include <afxwin.h>

#include <gallery/page.h>
#include <gallery/texts.h>
#include <gallery/tour.h>

#include <string>
#include <vector>

namespace {

enum {
  id_combo = 100,
  id_fill,
  id_widen,
  id_fit,
  id_width,
  id_list,
  id_align,
  id_details,
  id_frame,
  id_inside,
  id_field
};
constexpr int id_show_button = 200, id_button = 300;  // the first of one identifier for each button
constexpr const char* buttons[] = {"New", "Open", "Print"};
constexpr int button_count = 3, button_width = 80, button_gap = 4;

class GuiToolsPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(GuiToolsPage)
    COMMAND_ID_HANDLER(id_fill, OnFill)
    COMMAND_ID_HANDLER(id_widen, OnWiden)
    COMMAND_ID_HANDLER(id_fit, OnFit)
    COMMAND_RANGE_HANDLER(id_show_button, id_show_button + button_count - 1, OnShowButton)
    COMMAND_ID_HANDLER(id_align, OnAlign)
    COMMAND_ID_HANDLER(id_details, OnDetails)
  END_MSG_MAP()

 private:
  void add_controls() override {
    combo_ = add(WC_COMBOBOX, "", WS_TABSTOP | CBS_DROPDOWNLIST, id_combo, 120);
    add(WC_BUTTON, "&Fill from resources", WS_TABSTOP, id_fill, 130);
    add(WC_BUTTON, "Wi&den the list", WS_TABSTOP, id_widen, 100);
    add(WC_BUTTON, "Fi&t the list", WS_TABSTOP, id_fit, 80);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_width, 160);
    new_line(16);
    add_bar();
    new_line(16);
    list_ = add(WC_LISTVIEW, "", WS_TABSTOP | WS_BORDER | LVS_REPORT, id_list, 400, 84);
    add(WC_BUTTON, "Numbers to the ri&ght", WS_TABSTOP, id_align, 160);
    fill_list();
    new_line(16);
    add(WC_BUTTON, "&Show the details", WS_TABSTOP | BS_AUTOCHECKBOX, id_details, 160);
    check(id_details, details_);
    new_line();
    add(WC_BUTTON, "Details", BS_GROUPBOX, id_frame, 400, 86);
    new_line(-64);
    take_place(8);
    add(WC_STATIC, "All that lies in the frame is shown and hidden with it.", 0, id_inside, 360, 16);
    new_line();
    take_place(8);
    add(WC_EDIT, "This too.", WS_TABSTOP | WS_BORDER, id_field, 360);
  }

  void add_bar() {
    for (int i = 0; i < button_count; ++i) {
      add(WC_BUTTON, buttons[i], WS_TABSTOP | BS_AUTOCHECKBOX, id_show_button + i, button_width);
      check(id_show_button + i, true);
    }
    new_line();
    for (int i = 0; i < button_count; ++i) {
      buttons_.push_back(add(WC_BUTTON, buttons[i], WS_TABSTOP, id_button + i, button_width));
    }
    RECT place;
    buttons_.front().GetWindowRect(&place);
    ScreenToClient(&place);
    bar_top_ = place.top;
    arrange();
  }

  void arrange() {
    std::vector<ATL::CWindow*> all;
    for (ATL::CWindow& button : buttons_) all.push_back(&button);
    kexGUITools::rearrange_buttons_on_toolbar(all, margin, bar_top_, button_gap);
  }

  void fill_list() {
    list_.InsertColumn(0, "File", LVCFMT_LEFT, 200, 0);
    list_.InsertColumn(1, "Bytes", LVCFMT_LEFT, 196, 1);
    constexpr const char* files[][2] = {{"drawing.dat", "1048576"}, {"notes.txt", "512"}, {"preview.png", "20480"}};
    for (int row = 0; const auto& [name, size] : files) {
      list_.InsertItem(row, name);
      list_.SetItemText(row++, 1, size);
    }
  }

  LRESULT OnFill(WORD, WORD, HWND, BOOL&) {
    unsigned views[] = {IDS_BASE + 40, IDS_BASE + 41, IDS_BASE + 42, IDS_BASE + 43};
    kexGUITools::fill_combo_box_from_resource_ids(::GetModuleHandle("gallery_texts.dll"), combo_, views, 4);
    combo_.SetCurSel(0);
    show_width();
    return 0;
  }

  LRESULT OnWiden(WORD, WORD, HWND, BOOL&) {
    kexGUITools::set_dropdown_width(combo_, 240);
    show_width();
    return 0;
  }

  LRESULT OnFit(WORD, WORD, HWND, BOOL&) {
    kexGUITools::resize_dropdown_to_content(combo_);
    show_width();
    return 0;
  }

  void show_width() {
    set_text(id_width, ("The list's width is " + std::to_string(combo_.GetDroppedWidth()) + ".").c_str());
  }

  LRESULT OnShowButton(WORD, WORD command, HWND, BOOL&) {
    buttons_[static_cast<size_t>(command - id_show_button)].ShowWindow(is_checked(command) ? SW_SHOW : SW_HIDE);
    arrange();
    return 0;
  }

  LRESULT OnAlign(WORD, WORD, HWND, BOOL&) {
    kexGUITools::set_column_fmt(list_, 1, LVCFMT_RIGHT);
    list_.Invalidate();
    return 0;
  }

  // Reads the state of the box through MFC's dialog data exchange.
  LRESULT OnDetails(WORD, WORD, HWND, BOOL&) {
    CWnd page;
    page.Attach(m_hWnd);
    CDataExchange save(&page, TRUE);
    kexGUITools::ddx_check(&save, id_details, details_);
    page.Detach();  // the destructor would destroy the window
    kexGUITools::show_contained_controls(m_hWnd, GetDlgItem(id_frame), details_ ? SW_SHOW : SW_HIDE);
    return 0;
  }

  bool details_ = true;
  int bar_top_ = 0;
  WTL::CComboBox combo_;
  WTL::CListViewCtrl list_;
  std::vector<ATL::CWindow> buttons_;
};

void tour(gallery::Tour& user) {
  user.click(id_fill);
  user.check_text(id_combo, "Front");
  user.check_text(id_width, "The list's width is 120.");  // not narrower than the field
  user.click(id_widen);
  user.check_text(id_width, "The list's width is 240.");
  user.click(id_fit);
  user.check_text(id_width, "The list's width is 120.");

  const auto left_of = [&](int id) {
    RECT place;
    GetWindowRect(user.control(id), &place);
    MapWindowPoints(nullptr, user.page(), reinterpret_cast<POINT*>(&place), 2);
    return place.left;
  };
  const int second = left_of(id_button + 1), third = left_of(id_button + 2);
  user.check("the buttons stand in a row", [&] { return third - second == button_width + button_gap; });
  user.click(id_show_button + 1);
  user.check("the third button takes the place of the hidden one", [&] { return left_of(id_button + 2) == second; });

  const auto format = [&] {
    LVCOLUMNA column{};
    column.mask = LVCF_FMT;
    SendMessageA(user.control(id_list), LVM_GETCOLUMNA, 1, reinterpret_cast<LPARAM>(&column));
    return column.fmt & LVCFMT_JUSTIFYMASK;
  };
  user.click(id_align);
  user.check("the numbers stand at the right", [&] { return format() == LVCFMT_RIGHT; });
  user.take_picture("gui_tools");

  user.click(id_show_button + 1);
  user.check("the third button is back", [&] { return left_of(id_button + 2) == third; });
  const auto shown = [&](bool wanted) {
    user.check(wanted ? "the details are shown" : "the details are hidden", [&] {
      for (const int id : {id_frame, id_inside, id_field})
        if ((IsWindowVisible(user.control(id)) != FALSE) != wanted) return false;
      return IsWindowVisible(user.control(id_details)) != FALSE;
    });
  };
  user.click(id_details);
  shown(false);
  user.click(id_details);
  shown(true);
}

const gallery::Registration gui_tools{
    "windowtools", "GUI tools",
    "Small things that dialogs do to their controls: filling, measuring, arranging, showing and hiding them.",
    gallery::make<GuiToolsPage>, tour};

}  // namespace
