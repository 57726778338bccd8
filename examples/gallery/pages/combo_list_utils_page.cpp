// Combo box and list view utilities: filling a combo box, and reading a list view's selection and its texts.
#include <kexlib/windowtools.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <string>

namespace {

enum { id_combo = 100, id_lengths, id_times, id_list, id_read, id_selected };

class ComboListUtilsPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ComboListUtilsPage)
    COMMAND_ID_HANDLER(id_lengths, OnLengths)
    COMMAND_ID_HANDLER(id_times, OnTimes)
    COMMAND_ID_HANDLER(id_read, OnRead)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("Units", 60);
    combo_ = add(WC_COMBOBOX, "", WS_TABSTOP | CBS_DROPDOWNLIST, id_combo, 200);
    add(WC_BUTTON, "Of &length", WS_TABSTOP, id_lengths, 100);
    add(WC_BUTTON, "Of &time", WS_TABSTOP, id_times, 92);
    new_line(24);
    list_ = add(WC_LISTVIEW, "", WS_TABSTOP | WS_BORDER | LVS_REPORT | LVS_SHOWSELALWAYS, id_list, 476, 130);
    new_line();
    add(WC_BUTTON, "Read the s&election", WS_TABSTOP, id_read, 140);
    new_line();
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_READONLY | ES_MULTILINE, id_selected, 476, 70);
    fill_list();
    populate({"millimetre", "inch", "foot"});
  }

  void fill_list() {
    list_.InsertColumn(0, "City", LVCFMT_LEFT, 236, 0);
    list_.InsertColumn(1, "River", LVCFMT_LEFT, 236, 1);
    constexpr const char* cities[][2] = {
        {"Basel", "Rhine"}, {"Budapest", "Danube"}, {"Hamburg", "Elbe"}, {"Lyon", "Rhone"}};
    for (int row = 0; const auto& [city, river] : cities) {
      list_.InsertItem(row, city);
      list_.SetItemText(row++, 1, river);
    }
  }

  void populate(const std::vector<CStringA>& units) {
    kexWTLComboBoxUtils(combo_).populate(units);
    kexGUITools::resize_dropdown_length(combo_);
    combo_.SetCurSel(0);
  }

  LRESULT OnLengths(WORD, WORD, HWND, BOOL&) {
    populate({"millimetre", "inch", "foot"});
    return 0;
  }

  LRESULT OnTimes(WORD, WORD, HWND, BOOL&) {
    populate({"second", "minute", "hour", "day"});
    return 0;
  }

  LRESULT OnRead(WORD, WORD, HWND, BOOL&) {
    kexWTLListViewCtrlUtils utils(list_);
    CString lines;
    for (const int row : utils.get_selection())
      lines += utils.get_item_text(row, 0) + " lies on the " + utils.get_item_text(row, 1) + ".\r\n";
    set_text(id_selected, lines.GetLength() ? lines : CString("Nothing is selected."));
    return 0;
  }

  WTL::CComboBox combo_;
  WTL::CListViewCtrl list_;
};

void tour(gallery::Tour& user) {
  const auto items = [&] { return SendMessageA(user.control(id_combo), CB_GETCOUNT, 0, 0); };
  user.click(id_times);
  user.check("four units of time are there", [&] { return items() == 4; });
  user.check_text(id_combo, "second");
  user.click(id_lengths);
  user.check("three units of length are in their place", [&] { return items() == 3; });
  user.check_text(id_combo, "millimetre");
  user.click(id_combo);
  user.press(VK_DOWN);
  user.press(VK_RETURN);
  user.check_text(id_combo, "inch");

  // Selects the first row, and the third with Control and the space bar.
  user.click(id_list);
  user.press(VK_HOME);
  user.press_with(VK_CONTROL, VK_DOWN);
  user.press_with(VK_CONTROL, VK_DOWN);
  user.press_with(VK_CONTROL, VK_SPACE);
  user.click(id_read);
  user.check_text(id_selected, "Basel lies on the Rhine.\r\nHamburg lies on the Elbe.\r\n");
  user.take_picture("combo_list_utils");
  user.click(user.control(id_list), 300, 110);  // below the rows
  user.click(id_read);
  user.check_text(id_selected, "Nothing is selected.");
}

const gallery::Registration combo_list_utils{
    "windowtools", "Combo box and list view utilities",
    "What dialogs do to their lists again and again: filling a combo box, reading what is selected in a list.",
    gallery::make<ComboListUtilsPage>, tour};

}  // namespace
