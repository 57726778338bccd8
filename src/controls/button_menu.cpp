#include <kexlib/controls/button_menu.h>

#include <controls/subclass_instead.h>

#include <algorithm>

namespace {

constexpr int arrow_size = 100;  // tenths of a point
constexpr char arrow[] = "6";    // in the symbol font
constexpr char arrow_without_font[] = "v";

class Menu {
 public:
  Menu(HINSTANCE module, UINT id) : menu_(LoadMenuA(module, MAKEINTRESOURCEA(id))) {}
  Menu(const Menu&) = delete;
  Menu& operator=(const Menu&) = delete;
  ~Menu() {
    if (menu_) DestroyMenu(menu_);
  }
  HMENU first_submenu() const { return menu_ ? GetSubMenu(menu_, 0) : nullptr; }

 private:
  HMENU menu_;
};

// Only horizontally. Kept for compatibility: the menu of a button below all monitors opens there.
POINT moved_onto_monitor(POINT point) {
  if (MonitorFromPoint(point, MONITOR_DEFAULTTONULL)) return point;
  MONITORINFO nearest{};
  nearest.cbSize = sizeof nearest;
  if (GetMonitorInfoA(MonitorFromPoint(point, MONITOR_DEFAULTTONEAREST), &nearest))
    point.x = std::clamp(point.x, nearest.rcWork.left, nearest.rcWork.right);
  return point;
}

}  // namespace

// The base is not copied: ATL's copies its window procedure, and both objects would free it.
atlButtonMenu::atlButtonMenu(const atlButtonMenu& other) : CWindowImpl() { *this = other; }

atlButtonMenu& atlButtonMenu::operator=(const atlButtonMenu& other) {
  if (this == &other) return *this;
  menu_id_ = other.menu_id_;
  menu_module_ = other.menu_module_;
  arrow_font_.m_hFont = other.arrow_font_.m_hFont;  // kept for compatibility: the previous one may be shared
  if (!kexlib::is_subclassed<CWindowImpl>(*this)) m_hWnd = other.m_hWnd;
  return *this;
}

atlButtonMenu::~atlButtonMenu() = default;

BOOL atlButtonMenu::ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                                         DWORD map) {
  if (map != 0) return FALSE;
  if (message == OCM_COMMAND && HIWORD(wParam) == BN_CLICKED) {
    BOOL handled = TRUE;
    result = OnClick(BN_CLICKED, LOWORD(wParam), reinterpret_cast<HWND>(lParam), handled);
    return TRUE;
  }
  return DefaultReflectionHandler(window, message, wParam, lParam, result);
}

void atlButtonMenu::SetMenu(HINSTANCE module, UINT id) {
  menu_module_ = module;
  menu_id_ = id;
}

BOOL atlButtonMenu::SubclassWindow(HWND button) {
  if (!kexlib::subclass_instead<CWindowImpl>(*this, button)) return FALSE;
  ModifyStyle(BS_ICON, 0);
  if (arrow_font_.IsNull()) arrow_font_.CreatePointFont(arrow_size, "Marlett");
  if (!arrow_font_.IsNull()) SetFont(arrow_font_);
  SetWindowText(arrow_font_.IsNull() ? arrow_without_font : arrow);
  return TRUE;
}

LRESULT atlButtonMenu::OnClick(WORD, WORD, HWND, BOOL&) {
  const HWND window = m_hWnd;
  if (!menu_id_ || !::IsWindow(window)) return 0;
  if (GetCheck() == BST_UNCHECKED) SetCheck(BST_CHECKED);
  RECT button;
  GetWindowRect(&button);
  const Menu menu(menu_module_, menu_id_);
  const HMENU shown = menu.first_submenu();
  if (!shown) return 0;  // kept for compatibility: callers see the button stay checked

  const POINT corner = moved_onto_monitor({button.left, button.bottom});
  TrackPopupMenu(shown, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, corner.x, corner.y, 0, GetParent(), nullptr);
  // Also if it was checked before the click. The menu's command may have destroyed the button.
  ::SendMessageA(window, BM_SETCHECK, BST_UNCHECKED, 0);
  return 0;
}
