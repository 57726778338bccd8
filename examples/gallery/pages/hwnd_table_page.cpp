// The table of windows by name: one name space for the process, and in an MDI application one for each child frame.
#include <kexlib/windowtools.h>

#include <gallery/page.h>
#include <gallery/tour.h>

namespace {

enum { id_name = 100, id_make, id_destroy, id_colors, id_answer, id_view, id_panel = 200 };
constexpr UINT_PTR timer_view = 1;

// The window that is found by its name: an area of one colour.
class Panel : public ATL::CWindowImpl<Panel> {
 public:
  DECLARE_WND_CLASS_EX("kexlib_gallery_panel", 0, COLOR_WINDOW)
  BEGIN_MSG_MAP(Panel)
    MESSAGE_HANDLER(WM_PAINT, OnPaint)
  END_MSG_MAP()

 private:
  LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
    RECT all;
    GetClientRect(&all);
    WTL::CPaintDC(m_hWnd).FillSolidRect(&all, ::GetSysColor(COLOR_HIGHLIGHT));
    return 0;
  }
};

class HwndTablePage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(HwndTablePage)
    COMMAND_ID_HANDLER(id_make, OnMake)
    COMMAND_ID_HANDLER(id_destroy, OnDestroyPanel)
    COMMAND_HANDLER(id_name, EN_CHANGE, OnName)
    MESSAGE_HANDLER(WM_TIMER, OnTimer)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("Every page's view is registered as \"view\". The one in front has it:", 340);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_view, 240);
    new_line(20);
    add_label("Name", 60);
    add(WC_EDIT, "outline", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_name, 150);
    add(WC_BUTTON, "&Make a panel", WS_TABSTOP, id_make, 120);
    add(WC_BUTTON, "&Destroy it", WS_TABSTOP, id_destroy, 120);
    new_line();
    take_place(60);
    add(WC_STATIC, "", 0, id_answer, 480);
    new_line();
    take_place(60);
    panel_place_ = take_place(286, 120);
    show();
    SetTimer(timer_view, 100);
  }

  kexHWNDTable& table() { return kexHWNDTable::singleton(); }

  LRESULT OnMake(WORD, WORD, HWND, BOOL&) {
    if (panel_.m_hWnd) panel_.DestroyWindow();  // also removes its name
    if (!panel_.Create(m_hWnd, panel_place_, "", WS_CHILD | WS_VISIBLE, 0, static_cast<UINT>(id_panel))) return 0;
    const CString name = text_of(id_name);
    if (table().check_name(name, panel_)) {
      panel_.DestroyWindow();
      set_text(id_answer, "The name is taken in this page.");
      return 0;
    }
    table().reg_window(panel_, name, id_panel);
    show();
    return 0;
  }

  LRESULT OnDestroyPanel(WORD, WORD, HWND, BOOL&) {
    if (panel_.m_hWnd) panel_.DestroyWindow();
    show();
    return 0;
  }

  LRESULT OnName(WORD, WORD, HWND, BOOL&) {
    if (GetDlgItem(id_answer).m_hWnd) show();
    return 0;
  }

  void show() {
    const CString name = text_of(id_name);
    const HWND found = table().get_handle(name);
    CString answer = "No window is called \"" + name + "\".";
    if (found == m_hWnd)
      answer = "\"" + name + "\" is the view of this page.";
    else if (found)
      answer =
          "\"" + name + "\" is the panel, made from resource " + std::to_string(table().get_idd(found)).c_str() + ".";
    set_text(id_answer, answer);
  }

  // Repeats the look-up: the result changes when another page is activated.
  LRESULT OnTimer(UINT, WPARAM, LPARAM, BOOL&) {
    const HWND view = table().get_handle("view");
    const CString title = view ? gallery::text_of(view) : CString();
    if (text_of(id_view) != title) set_text(id_view, title);
    return 0;
  }

  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled) {
    handled = FALSE;
    KillTimer(timer_view);
    return 0;
  }

  RECT panel_place_{};
  Panel panel_;
};

void tour(gallery::Tour& user) {
  const auto panel = [&] { return GetDlgItem(user.page(), id_panel); };
  user.check_text(id_view, "Windows by name");
  user.write(id_name, "outline");
  user.check_text(id_answer, "No window is called \"outline\".");
  user.click(id_make);
  user.check_text(id_answer, "\"outline\" is the panel, made from resource 200.");
  user.check("the panel has the colour of selections",
             [&] { return user.color_at(panel(), 20, 20) == GetSysColor(COLOR_HIGHLIGHT); });
  user.take_picture("hwnd_table");
  user.click(id_destroy);
  user.check_text(id_answer, "No window is called \"outline\".");
  user.check("the panel is gone", [&] { return !panel(); });

  user.write(id_name, "view");
  user.check_text(id_answer, "\"view\" is the view of this page.");
  user.click(id_make);
  user.check_text(id_answer, "The name is taken in this page.");
  user.write(id_name, "outline");

  // If another page is open, it is activated, and the name refers to it.
  const HWND frame = GetParent(user.page()), client = GetParent(frame);
  const bool alone = !GetWindow(frame, GW_HWNDNEXT) && !GetWindow(frame, GW_HWNDPREV);
  const auto in_front = [&] { return reinterpret_cast<HWND>(SendMessageA(client, WM_MDIGETACTIVE, 0, 0)); };
  user.press_with(VK_CONTROL, VK_F6);
  user.wait_until("another page in front", [&] { return alone || in_front() != frame; });
  user.check_text(id_view, user.text_of(in_front()));
}

const gallery::Registration hwnd_table{
    "windowtools", "Windows by name",
    "Windows register under a name and are found by it anywhere; in an MDI application the page in front counts.",
    gallery::make<HwndTablePage>, tour};

}  // namespace
