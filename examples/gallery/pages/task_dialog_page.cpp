// Task dialogs: buttons that close the dialog, a button with an action that keeps it open, a link, and the four icons.
#include <kexlib/dialogs.h>

#include <gallery/page.h>
#include <gallery/tour.h>

namespace {

enum { id_raise = 100, id_icon, id_result, id_compared };
constexpr char caption[] = "Export";

class TaskDialogPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(TaskDialogPage)
    COMMAND_ID_HANDLER(id_raise, OnRaise)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("Icon", 60);
    WTL::CComboBox icons(add(WC_COMBOBOX, "", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, id_icon, 140, 150).m_hWnd);
    for (const char* name : {"Error", "Warning", "Information", "Shield"}) icons.AddString(name);
    icons.SetCurSel(kexTDIcon_Warning);
    add(WC_BUTTON, "&Raise it", WS_TABSTOP, id_raise, 120);
    new_line(16);
    add(WC_STATIC, "", 0, id_result, 420);
    new_line();
    add(WC_STATIC, "", 0, id_compared, 420);
  }

  LRESULT OnRaise(WORD, WORD, HWND, BOOL&) {
    int compared = 0;
    CString link;
    kexTaskDialog dialog;
    dialog.set_parent(m_hWnd);
    dialog.set_title(caption);
    dialog.set_icon(static_cast<kexTaskDialogIcon>(WTL::CComboBox(GetDlgItem(id_icon).m_hWnd).GetCurSel()));
    dialog.set_main_instruction("The file is there already.");
    dialog.set_message("Its contents would be lost. <a href=\"what replacing means\">What does that mean?</a>");
    const int replace = dialog.add_button("Replace");
    const int compare = dialog.add_button("Compare");
    dialog.add_button("Leave it");
    dialog.set_default_button(replace);
    dialog.add_action(compare, [&](const kexTaskDialogActionContext&) {
      ++compared;
      show_comparisons(compared);
    });
    dialog.set_hyperlink_action([&](const kexTaskDialogHyperlinkActionContext& context) { link = context.url; });
    const int pressed = dialog.raise();
    set_text(id_result, pressed == replace ? "It is replaced." : "It is left as it is.");
    return 0;
  }

  void show_comparisons(int count) {
    CString text;
    text.Format("Compared %d times, with the dialog open.", count);
    set_text(id_compared, text);
  }
};

void tour(gallery::Tour& user) {
  const auto button = [](HWND dialog, const char* text) { return FindWindowExA(dialog, nullptr, "Button", text); };
  user.click(id_raise);
  HWND dialog = user.wait_for_window(caption);
  user.check("the buttons stand in their order", [&] {
    RECT first, second, third;
    GetWindowRect(button(dialog, "Replace"), &first);
    GetWindowRect(button(dialog, "Compare"), &second);
    GetWindowRect(button(dialog, "Leave it"), &third);
    return first.right <= second.left && second.right <= third.left;
  });
  user.take_picture("task_dialog", dialog);
  user.click(button(dialog, "Compare"));
  user.check_text(id_compared, "Compared 1 times, with the dialog open.");
  user.click(button(dialog, "Compare"));
  user.check_text(id_compared, "Compared 2 times, with the dialog open.");
  user.click(button(dialog, "Leave it"));
  user.wait_for_end_of(dialog);
  user.check_text(id_result, "It is left as it is.");

  user.click(id_raise);
  dialog = user.wait_for_window(caption);
  user.press(VK_RETURN);  // the default button
  user.wait_for_end_of(dialog);
  user.check_text(id_result, "It is replaced.");
}

const gallery::Registration task_dialog{
    "dialogs", "Task dialog",
    "The system's task dialog, built from texts, buttons and actions: a button with an action leaves it open.",
    gallery::make<TaskDialogPage>, tour};

}  // namespace
