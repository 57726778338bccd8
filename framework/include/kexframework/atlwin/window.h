// A window handle with methods: CWindow, and what its Create takes. Part of <atlwin.h>.
#ifndef FRAMEWORK_ATLWIN_WINDOW_H
#define FRAMEWORK_ATLWIN_WINDOW_H

#include <atlbase.h>

// A method here; windowsx.h has a macro of this name.
#undef SubclassWindow

namespace ATL {

// A rectangle, by pointer or by reference. Null is CWindow::rcDefault.
class _U_RECT {
 public:
  _U_RECT(LPRECT rect) : m_lpRect(rect) {}
  _U_RECT(RECT& rect) : m_lpRect(&rect) {}
  LPRECT m_lpRect;
};

// A text, or the identifier of a resource.
class _U_STRINGorID {
 public:
  _U_STRINGorID(LPCTSTR text) : m_lpstr(text) {}
  _U_STRINGorID(UINT id) : m_lpstr(MAKEINTRESOURCE(id)) {}
  LPCTSTR m_lpstr;
};

// The menu of a top-level window, or the identifier of a child.
class _U_MENUorID {
 public:
  _U_MENUorID(HMENU menu) : m_hMenu(menu) {}
  _U_MENUorID(UINT id) : m_hMenu(reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id))) {}
  HMENU m_hMenu;
};

// The size for CreateWindowEx between two sides of a rectangle. That of rcDefault wraps to CW_USEDEFAULT.
constexpr int _AtlExtent(LONG from, LONG to) {
  return static_cast<int>(static_cast<ULONG>(to) - static_cast<ULONG>(from));
}

// A window handle with the system's functions as methods. It owns nothing: copies refer to the same window, and the
// destructor does not destroy it. Each method is the system's function or message of that name, and asserts that there
// is a window.
class CWindow {
 public:
  CWindow(HWND window = nullptr) noexcept : m_hWnd(window) {}
  CWindow& operator=(HWND window) noexcept {
    m_hWnd = window;
    return *this;
  }
  operator HWND() const noexcept { return m_hWnd; }

  // The window class for Create; null here: CWindow is for any class.
  static LPCTSTR GetWndClassName() noexcept { return nullptr; }

  void Attach(HWND window) noexcept { m_hWnd = window; }
  HWND Detach() noexcept {
    HWND window = m_hWnd;
    m_hWnd = nullptr;
    return window;
  }

  // Calls CreateWindowEx with the instance of this module. The object then holds the new window, or null.
  HWND Create(LPCTSTR windowClass, HWND parent, _U_RECT rect = nullptr, LPCTSTR name = nullptr, DWORD style = 0,
              DWORD extendedStyle = 0, _U_MENUorID menuOrId = 0U, LPVOID parameter = nullptr) noexcept {
    ATLASSERT(!m_hWnd);
    const RECT& place = rect.m_lpRect ? *rect.m_lpRect : rcDefault;
    m_hWnd = CreateWindowEx(extendedStyle, windowClass, name, style, place.left, place.top,
                            _AtlExtent(place.left, place.right), _AtlExtent(place.top, place.bottom), parent,
                            menuOrId.m_hMenu, _AtlBaseModule.GetModuleInstance(), parameter);
    return m_hWnd;
  }
  // The object is null afterwards, unless the window cannot be destroyed.
  BOOL DestroyWindow() noexcept {
    if (!::DestroyWindow(existing())) return FALSE;
    m_hWnd = nullptr;
    return TRUE;
  }
  BOOL IsWindow() const noexcept { return ::IsWindow(m_hWnd); }

  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const noexcept {
    return ::SendMessage(existing(), message, wParam, lParam);
  }
  BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const noexcept {
    return ::PostMessage(existing(), message, wParam, lParam);
  }

  LONG GetWindowLong(int index) const noexcept { return ::GetWindowLong(existing(), index); }
  LONG SetWindowLong(int index, LONG value) noexcept { return ::SetWindowLong(existing(), index, value); }
  LONG_PTR GetWindowLongPtr(int index) const noexcept { return ::GetWindowLongPtr(existing(), index); }
  LONG_PTR SetWindowLongPtr(int index, LONG_PTR value) noexcept { return ::SetWindowLongPtr(existing(), index, value); }
  DWORD GetStyle() const noexcept { return static_cast<DWORD>(GetWindowLong(GWL_STYLE)); }
  DWORD GetExStyle() const noexcept { return static_cast<DWORD>(GetWindowLong(GWL_EXSTYLE)); }
  // Returns FALSE if the style does not change. Nonzero `flags` are for a call of SetWindowPos that keeps position and
  // size.
  BOOL ModifyStyle(DWORD remove, DWORD add, UINT flags = 0) noexcept { return modify(GWL_STYLE, remove, add, flags); }
  BOOL ModifyStyleEx(DWORD remove, DWORD add, UINT flags = 0) noexcept {
    return modify(GWL_EXSTYLE, remove, add, flags);
  }

  BOOL SetWindowText(LPCTSTR text) noexcept { return ::SetWindowText(existing(), text); }
  int GetWindowText(LPTSTR text, int room) const noexcept { return ::GetWindowText(existing(), text, room); }
  int GetWindowTextLength() const noexcept { return ::GetWindowTextLength(existing()); }
  void SetFont(HFONT font, BOOL redraw = TRUE) noexcept {
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font), MAKELPARAM(redraw, 0));
  }
  HFONT GetFont() const noexcept { return reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)); }

  BOOL MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE) noexcept {
    return ::MoveWindow(existing(), x, y, width, height, repaint);
  }
  BOOL MoveWindow(LPCRECT rect, BOOL repaint = TRUE) noexcept {
    return MoveWindow(rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, repaint);
  }
  BOOL SetWindowPos(HWND after, int x, int y, int width, int height, UINT flags) noexcept {
    return ::SetWindowPos(existing(), after, x, y, width, height, flags);
  }
  BOOL ShowWindow(int command) noexcept { return ::ShowWindow(existing(), command); }
  BOOL EnableWindow(BOOL enable = TRUE) noexcept { return ::EnableWindow(existing(), enable); }
  BOOL IsWindowVisible() const noexcept { return ::IsWindowVisible(existing()); }
  BOOL IsWindowEnabled() const noexcept { return ::IsWindowEnabled(existing()); }
  HWND SetFocus() noexcept { return ::SetFocus(existing()); }
  HWND SetCapture() noexcept { return ::SetCapture(existing()); }

  BOOL GetClientRect(LPRECT rect) const noexcept { return ::GetClientRect(existing(), rect); }
  BOOL GetWindowRect(LPRECT rect) const noexcept { return ::GetWindowRect(existing(), rect); }
  BOOL ScreenToClient(LPPOINT point) const noexcept { return ::ScreenToClient(existing(), point); }
  // Converts both corners; the second one only if the first conversion succeeds.
  BOOL ScreenToClient(LPRECT rect) const noexcept {
    auto* corners = reinterpret_cast<LPPOINT>(rect);
    return ::ScreenToClient(existing(), corners) && ::ScreenToClient(existing(), corners + 1);
  }
  BOOL ClientToScreen(LPPOINT point) const noexcept { return ::ClientToScreen(existing(), point); }
  BOOL ClientToScreen(LPRECT rect) const noexcept {
    auto* corners = reinterpret_cast<LPPOINT>(rect);
    return ::ClientToScreen(existing(), corners) && ::ClientToScreen(existing(), corners + 1);
  }
  // Centres the window over `center`, its owner, or the parent of a child. Without an owner, or with one that is hidden
  // or minimised, over the work area of its monitor. The window stays inside the work area, or inside its parent.
  KEXFRAMEWORK_API BOOL CenterWindow(HWND center = nullptr) noexcept;

  HDC BeginPaint(LPPAINTSTRUCT paint) noexcept { return ::BeginPaint(existing(), paint); }
  void EndPaint(LPPAINTSTRUCT paint) noexcept { ::EndPaint(existing(), paint); }
  HDC GetDC() noexcept { return ::GetDC(existing()); }
  int ReleaseDC(HDC dc) noexcept { return ::ReleaseDC(existing(), dc); }
  BOOL Invalidate(BOOL erase = TRUE) noexcept { return ::InvalidateRect(existing(), nullptr, erase); }
  BOOL InvalidateRect(LPCRECT rect, BOOL erase = TRUE) noexcept { return ::InvalidateRect(existing(), rect, erase); }
  BOOL UpdateWindow() noexcept { return ::UpdateWindow(existing()); }

  UINT_PTR SetTimer(UINT_PTR id, UINT milliseconds) noexcept {
    return ::SetTimer(existing(), id, milliseconds, nullptr);
  }
  BOOL KillTimer(UINT_PTR id) noexcept { return ::KillTimer(existing(), id); }

  CWindow GetParent() const noexcept { return CWindow(::GetParent(existing())); }
  CWindow GetDlgItem(int id) const noexcept { return CWindow(::GetDlgItem(existing(), id)); }
  int GetDlgCtrlID() const noexcept { return ::GetDlgCtrlID(existing()); }

  // The default position: the system chooses.
  static inline RECT rcDefault = {CW_USEDEFAULT, CW_USEDEFAULT, 0, 0};

  HWND m_hWnd;

 private:
  HWND existing() const noexcept {
    ATLASSERT(::IsWindow(m_hWnd));
    return m_hWnd;
  }

  BOOL modify(int index, DWORD remove, DWORD add, UINT flags) noexcept {
    auto old = static_cast<DWORD>(GetWindowLong(index));
    DWORD style = (old & ~remove) | add;
    if (style == old) return FALSE;
    SetWindowLong(index, static_cast<LONG>(style));
    if (flags) SetWindowPos(nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | flags);
    return TRUE;
  }
};

}  // namespace ATL

#endif
