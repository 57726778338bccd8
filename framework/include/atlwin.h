// ATL's windows: a handle with methods (CWindow), window classes written in C++ (CWindowImpl), dialogs (CDialogImpl),
// and the message maps that both are written with.
//
//     class Box : public CWindowImpl<Box, CWindow, CControlWinTraits> {
//       BEGIN_MSG_MAP(Box)
//         MESSAGE_HANDLER(WM_PAINT, OnPaint)
//         COMMAND_HANDLER(IDOK, BN_CLICKED, OnOk)
//         REFLECT_NOTIFICATIONS()
//       END_MSG_MAP()
//       ...
//     };
//
// A window belongs to the thread that made it; so does its object.
#ifndef FRAMEWORK_ATLWIN_H
#define FRAMEWORK_ATLWIN_H

#include <atlbase.h>
#include <commctrl.h>
#include <olectl.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// A method's name here, and a macro of windowsx.h.
#undef SubclassWindow

namespace ATL {

// ---- what creation functions take ---------------------------------------------------------------------------------

// A rectangle, by pointer or by reference; null stands for CWindow::rcDefault.
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

// ---- a window ------------------------------------------------------------------------------------------------------

// A window handle with the functions of the system as methods. It owns nothing: copies name the same window, and the
// destructor leaves the window alone. Each method is the system's function or message of its name.
class CWindow {
 public:
  CWindow(HWND window = nullptr) noexcept : m_hWnd(window) {}
  CWindow& operator=(HWND window) noexcept {
    m_hWnd = window;
    return *this;
  }
  operator HWND() const noexcept { return m_hWnd; }

  // The class that Create makes a window of; null here, since CWindow stands for any.
  static LPCTSTR GetWndClassName() noexcept { return nullptr; }

  void Attach(HWND window) noexcept { m_hWnd = window; }
  HWND Detach() noexcept {
    HWND window = m_hWnd;
    m_hWnd = nullptr;
    return window;
  }

  // CreateWindowEx with this module's instance. The object holds the new window afterwards, or null.
  HWND Create(LPCTSTR windowClass, HWND parent, _U_RECT rect = nullptr, LPCTSTR name = nullptr, DWORD style = 0,
              DWORD extendedStyle = 0, _U_MENUorID menuOrId = 0U, LPVOID parameter = nullptr) noexcept {
    const RECT& place = rect.m_lpRect ? *rect.m_lpRect : rcDefault;
    m_hWnd = CreateWindowEx(extendedStyle, windowClass, name, style, place.left, place.top, place.right - place.left,
                            place.bottom - place.top, parent, menuOrId.m_hMenu, _AtlBaseModule.GetModuleInstance(),
                            parameter);
    return m_hWnd;
  }
  // The object holds nothing afterwards, unless the window could not be destroyed.
  BOOL DestroyWindow() noexcept {
    if (!::DestroyWindow(m_hWnd)) return FALSE;
    m_hWnd = nullptr;
    return TRUE;
  }
  BOOL IsWindow() const noexcept { return ::IsWindow(m_hWnd); }

  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const noexcept {
    return ::SendMessage(m_hWnd, message, wParam, lParam);
  }
  BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const noexcept {
    return ::PostMessage(m_hWnd, message, wParam, lParam);
  }

  LONG GetWindowLong(int index) const noexcept { return ::GetWindowLong(m_hWnd, index); }
  LONG SetWindowLong(int index, LONG value) noexcept { return ::SetWindowLong(m_hWnd, index, value); }
  LONG_PTR GetWindowLongPtr(int index) const noexcept { return ::GetWindowLongPtr(m_hWnd, index); }
  LONG_PTR SetWindowLongPtr(int index, LONG_PTR value) noexcept { return ::SetWindowLongPtr(m_hWnd, index, value); }
  DWORD GetStyle() const noexcept { return static_cast<DWORD>(GetWindowLong(GWL_STYLE)); }
  DWORD GetExStyle() const noexcept { return static_cast<DWORD>(GetWindowLong(GWL_EXSTYLE)); }
  // FALSE where the style had all of it already. `flags` other than 0 are for a SetWindowPos that keeps place and size.
  BOOL ModifyStyle(DWORD remove, DWORD add, UINT flags = 0) noexcept { return modify(GWL_STYLE, remove, add, flags); }
  BOOL ModifyStyleEx(DWORD remove, DWORD add, UINT flags = 0) noexcept {
    return modify(GWL_EXSTYLE, remove, add, flags);
  }

  BOOL SetWindowText(LPCTSTR text) noexcept { return ::SetWindowText(m_hWnd, text); }
  int GetWindowText(LPTSTR text, int room) const noexcept { return ::GetWindowText(m_hWnd, text, room); }
  int GetWindowTextLength() const noexcept { return ::GetWindowTextLength(m_hWnd); }
  void SetFont(HFONT font, BOOL redraw = TRUE) noexcept {
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font), MAKELPARAM(redraw, 0));
  }
  HFONT GetFont() const noexcept { return reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)); }

  BOOL MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE) noexcept {
    return ::MoveWindow(m_hWnd, x, y, width, height, repaint);
  }
  BOOL MoveWindow(LPCRECT rect, BOOL repaint = TRUE) noexcept {
    return MoveWindow(rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, repaint);
  }
  BOOL SetWindowPos(HWND after, int x, int y, int width, int height, UINT flags) noexcept {
    return ::SetWindowPos(m_hWnd, after, x, y, width, height, flags);
  }
  BOOL ShowWindow(int command) noexcept { return ::ShowWindow(m_hWnd, command); }
  BOOL EnableWindow(BOOL enable = TRUE) noexcept { return ::EnableWindow(m_hWnd, enable); }
  BOOL IsWindowVisible() const noexcept { return ::IsWindowVisible(m_hWnd); }
  BOOL IsWindowEnabled() const noexcept { return ::IsWindowEnabled(m_hWnd); }
  HWND SetFocus() noexcept { return ::SetFocus(m_hWnd); }
  HWND SetCapture() noexcept { return ::SetCapture(m_hWnd); }

  BOOL GetClientRect(LPRECT rect) const noexcept { return ::GetClientRect(m_hWnd, rect); }
  BOOL GetWindowRect(LPRECT rect) const noexcept { return ::GetWindowRect(m_hWnd, rect); }
  BOOL ScreenToClient(LPPOINT point) const noexcept { return ::ScreenToClient(m_hWnd, point); }
  // Both corners; the second only where the first could be converted.
  BOOL ScreenToClient(LPRECT rect) const noexcept {
    auto* corners = reinterpret_cast<LPPOINT>(rect);
    return ::ScreenToClient(m_hWnd, corners) && ::ScreenToClient(m_hWnd, corners + 1);
  }
  BOOL ClientToScreen(LPPOINT point) const noexcept { return ::ClientToScreen(m_hWnd, point); }
  BOOL ClientToScreen(LPRECT rect) const noexcept {
    auto* corners = reinterpret_cast<LPPOINT>(rect);
    return ::ClientToScreen(m_hWnd, corners) && ::ClientToScreen(m_hWnd, corners + 1);
  }
  // Centres the window over `center`, or over its owner, or over its parent if it is a child; over the work area of
  // its monitor if there is no owner, or none to be seen. It stays within the work area, or within its parent.
  KEXFRAMEWORK_API BOOL CenterWindow(HWND center = nullptr) noexcept;

  HDC BeginPaint(LPPAINTSTRUCT paint) noexcept { return ::BeginPaint(m_hWnd, paint); }
  void EndPaint(LPPAINTSTRUCT paint) noexcept { ::EndPaint(m_hWnd, paint); }
  HDC GetDC() noexcept { return ::GetDC(m_hWnd); }
  int ReleaseDC(HDC dc) noexcept { return ::ReleaseDC(m_hWnd, dc); }
  BOOL Invalidate(BOOL erase = TRUE) noexcept { return ::InvalidateRect(m_hWnd, nullptr, erase); }
  BOOL InvalidateRect(LPCRECT rect, BOOL erase = TRUE) noexcept { return ::InvalidateRect(m_hWnd, rect, erase); }
  BOOL UpdateWindow() noexcept { return ::UpdateWindow(m_hWnd); }

  UINT_PTR SetTimer(UINT_PTR id, UINT milliseconds) noexcept { return ::SetTimer(m_hWnd, id, milliseconds, nullptr); }
  BOOL KillTimer(UINT_PTR id) noexcept { return ::KillTimer(m_hWnd, id); }

  CWindow GetParent() const noexcept { return CWindow(::GetParent(m_hWnd)); }
  CWindow GetDlgItem(int id) const noexcept { return CWindow(::GetDlgItem(m_hWnd, id)); }
  int GetDlgCtrlID() const noexcept { return ::GetDlgCtrlID(m_hWnd); }

  // Where windows go that are not told where: the system chooses.
  static inline RECT rcDefault = {CW_USEDEFAULT, CW_USEDEFAULT, 0, 0};

  HWND m_hWnd;

 private:
  BOOL modify(int index, DWORD remove, DWORD add, UINT flags) noexcept {
    auto old = static_cast<DWORD>(GetWindowLong(index));
    DWORD style = (old & ~remove) | add;
    if (style == old) return FALSE;
    SetWindowLong(index, static_cast<LONG>(style));
    if (flags) SetWindowPos(nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | flags);
    return TRUE;
  }
};

// ---- message maps --------------------------------------------------------------------------------------------------

// What handles messages. Maps other than 0 serve other windows, or classes that chain to them.
class CMessageMap {
 public:
  // True if the message was handled; lResult is its result then.
  virtual BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                    DWORD dwMsgMapID) = 0;

 protected:
  CMessageMap() = default;
  CMessageMap(const CMessageMap&) = default;
  CMessageMap& operator=(const CMessageMap&) = default;
  ~CMessageMap() = default;
};

}  // namespace ATL

// Handlers of messages, commands and notifications have these shapes. A handler that sets bHandled to FALSE lets the
// message go on through the map, and to the window's own procedure at last.
//
//     LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
//     LRESULT OnCommand(WORD wNotifyCode, WORD wID, HWND hWndCtl, BOOL& bHandled);
//     LRESULT OnNotify(int idCtrl, LPNMHDR pnmh, BOOL& bHandled);
#define BEGIN_MSG_MAP(theClass)                                                                     \
 public:                                                                                            \
  virtual BOOL ProcessWindowMessage([[maybe_unused]] HWND hWnd, [[maybe_unused]] UINT uMsg,         \
                                    [[maybe_unused]] WPARAM wParam, [[maybe_unused]] LPARAM lParam, \
                                    [[maybe_unused]] LRESULT& lResult, DWORD dwMsgMapID = 0) {      \
    [[maybe_unused]] BOOL bHandled = TRUE;                                                          \
    switch (dwMsgMapID) {                                                                           \
      case 0:

#define END_MSG_MAP() \
  break;              \
  default:            \
    break;            \
    }                 \
    return FALSE;     \
    }

#define KEXFRAMEWORK_MAP_ENTRY(condition, call) \
  if (condition) {                              \
    bHandled = TRUE;                            \
    lResult = call;                             \
    if (bHandled) return TRUE;                  \
  }

#define MESSAGE_HANDLER(msg, func) KEXFRAMEWORK_MAP_ENTRY(uMsg == (msg), func(uMsg, wParam, lParam, bHandled))
#define MESSAGE_RANGE_HANDLER(msgFirst, msgLast, func) \
  KEXFRAMEWORK_MAP_ENTRY(uMsg >= (msgFirst) && uMsg <= (msgLast), func(uMsg, wParam, lParam, bHandled))

#define KEXFRAMEWORK_COMMAND_ENTRY(message, condition, func) \
  KEXFRAMEWORK_MAP_ENTRY(uMsg == (message) && (condition),   \
                         func(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam), bHandled))
#define COMMAND_HANDLER(id, code, func) \
  KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, (id) == LOWORD(wParam) && (code) == HIWORD(wParam), func)
#define COMMAND_ID_HANDLER(id, func) KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, (id) == LOWORD(wParam), func)
#define COMMAND_CODE_HANDLER(code, func) KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, (code) == HIWORD(wParam), func)
#define COMMAND_RANGE_HANDLER(idFirst, idLast, func) \
  KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, LOWORD(wParam) >= (idFirst) && LOWORD(wParam) <= (idLast), func)
// The same for commands that the parent gave back (REFLECT_NOTIFICATIONS).
#define REFLECTED_COMMAND_CODE_HANDLER(code, func) \
  KEXFRAMEWORK_COMMAND_ENTRY(OCM_COMMAND, (code) == HIWORD(wParam), func)

#define KEXFRAMEWORK_NOTIFY_ENTRY(message, condition, func)                            \
  KEXFRAMEWORK_MAP_ENTRY(uMsg == (message) && ATL::_AtlNotification(lParam).condition, \
                         func(static_cast<int>(wParam), reinterpret_cast<LPNMHDR>(lParam), bHandled))
#define NOTIFY_HANDLER(id, code, func) KEXFRAMEWORK_NOTIFY_ENTRY(WM_NOTIFY, is(id, code), func)
#define NOTIFY_CODE_HANDLER(code, func) KEXFRAMEWORK_NOTIFY_ENTRY(WM_NOTIFY, has_code(code), func)

// What this map does not handle goes to a base class's.
#define CHAIN_MSG_MAP(theChainClass) \
  if (theChainClass::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, 0)) return TRUE;

// Gives a control's notification back to the control, as OCM_ plus the message, and takes its answer.
#define REFLECT_NOTIFICATIONS() KEXFRAMEWORK_MAP_ENTRY(true, this->ReflectNotifications(uMsg, wParam, lParam, bHandled))
// In the control: what comes back and is not handled gets the system's default treatment.
#define DEFAULT_REFLECTION_HANDLER() \
  if (this->DefaultReflectionHandler(hWnd, uMsg, wParam, lParam, lResult)) return TRUE;

namespace ATL {

// The header of a WM_NOTIFY, for the message maps.
struct _AtlNotification {
  explicit _AtlNotification(LPARAM lParam) : header(reinterpret_cast<const NMHDR*>(lParam)) {}
  template <typename Code>
  bool has_code(Code code) const {
    return header->code == static_cast<UINT>(code);
  }
  template <typename Id, typename Code>
  bool is(Id id, Code code) const {
    return header->idFrom == static_cast<UINT_PTR>(id) && has_code(code);
  }
  const NMHDR* header;
};

// ---- window classes ------------------------------------------------------------------------------------------------

// The styles that a window gets where Create is not told any.
template <DWORD t_dwStyle = 0, DWORD t_dwExStyle = 0>
class CWinTraits {
 public:
  static DWORD GetWndStyle(DWORD style) { return style ? style : t_dwStyle; }
  static DWORD GetWndExStyle(DWORD style) { return style ? style : t_dwExStyle; }
};
using CControlWinTraits = CWinTraits<WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0>;
using CFrameWinTraits =
    CWinTraits<WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, WS_EX_APPWINDOW | WS_EX_WINDOWEDGE>;

// A window class of this module, registered at its first use and unregistered when the module goes.
//
// With m_lpszOrigName it is a superclass: a copy of that class whose windows pass what they do not handle on to the
// original's procedure (pWndProc).
struct CWndClassInfo {
  WNDCLASSEX m_wc;
  LPCTSTR m_lpszOrigName;
  WNDPROC pWndProc = nullptr;
  ATOM m_atom = 0;
  char m_szAutoName[sizeof("ATL:") + 2 * sizeof(void*)] = {};
  CWndClassInfo* next = nullptr;

  // The class, or 0 where the system refuses it. `*original` becomes the procedure of the class copied.
  ATOM Register(WNDPROC* original);
};

// The class of a C++ window class, by name, or null for one that is made up. The plain form redraws its windows whole
// when their size changes and takes double clicks.
#define DECLARE_WND_CLASS(WndClassName) \
  DECLARE_WND_CLASS_EX(WndClassName, CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS, COLOR_WINDOW)
#define DECLARE_WND_CLASS_EX(WndClassName, classStyle, background)                                          \
  static ATL::CWndClassInfo& GetWndClassInfo() {                                                            \
    static ATL::CWndClassInfo info = {                                                                      \
        {sizeof(WNDCLASSEX), classStyle, StartWindowProc, 0, 0, nullptr, nullptr, nullptr,                  \
         reinterpret_cast<HBRUSH>(static_cast<INT_PTR>((background) + 1)), nullptr, WndClassName, nullptr}, \
        nullptr};                                                                                           \
    return info;                                                                                            \
  }
#define DECLARE_WND_SUPERCLASS(WndClassName, OrigWndClassName)                                                  \
  static ATL::CWndClassInfo& GetWndClassInfo() {                                                                \
    static ATL::CWndClassInfo info = {{sizeof(WNDCLASSEX), 0, StartWindowProc, 0, 0, nullptr, nullptr, nullptr, \
                                       nullptr, nullptr, WndClassName, nullptr},                                \
                                      OrigWndClassName};                                                        \
    return info;                                                                                                \
  }

// Says on this thread, for as long as it lives, whose the next window will be. The window finds out at its first
// message. (That is not WM_NCCREATE, so a creation parameter could not tell it.) Creations may nest.
class KEXFRAMEWORK_API _AtlCreateWndData {
 public:
  explicit _AtlCreateWndData(void* object) noexcept;
  _AtlCreateWndData(const _AtlCreateWndData&) = delete;
  _AtlCreateWndData& operator=(const _AtlCreateWndData&) = delete;
  // Where no window was made, the object waits no longer.
  ~_AtlCreateWndData();

  // The object that waits for the window whose first message this is; null if none does.
  static void* Extract() noexcept;

 private:
  void* m_object;
  _AtlCreateWndData* m_outer;
};

// The window classes of one module.
class CAtlWinModule {
 public:
  constexpr CAtlWinModule() = default;
  CAtlWinModule(const CAtlWinModule&) = delete;
  CAtlWinModule& operator=(const CAtlWinModule&) = delete;
  ~CAtlWinModule() { unregister(m_classes); }

  // Registers the class if it is not yet, and takes note of it. Serialised: threads may meet in it.
  ATOM Register(CWndClassInfo& info) noexcept {
    return register_once(info, _AtlBaseModule.GetModuleInstance(), m_classes);
  }

 private:
  KEXFRAMEWORK_API static ATOM register_once(CWndClassInfo& info, HINSTANCE instance, CWndClassInfo*& classes) noexcept;
  KEXFRAMEWORK_API static void unregister(CWndClassInfo* classes) noexcept;

  CWndClassInfo* m_classes = nullptr;
};
inline constinit CAtlWinModule _AtlWinModule;

inline ATOM CWndClassInfo::Register(WNDPROC* original) {
  ATOM atom = _AtlWinModule.Register(*this);
  if (m_lpszOrigName) *original = pWndProc;
  return atom;
}

// ---- windows written in C++ ----------------------------------------------------------------------------------------

struct CStdThunk;

// A window procedure of an object's own: code, made by the system (atlthunk.dll), that calls a function with the
// object in place of the window handle. It is given back with the object, not with the window, since messages may
// still be on their way through it when the window goes.
class CWndProcThunk {
 public:
  CWndProcThunk() = default;
  CWndProcThunk(const CWndProcThunk&) noexcept {}  // a copy of an object has a procedure of its own
  CWndProcThunk& operator=(const CWndProcThunk&) noexcept { return *this; }
  KEXFRAMEWORK_API ~CWndProcThunk();

  // FALSE where the system has no memory for it. May be called again with another function or object.
  KEXFRAMEWORK_API BOOL Init(void* function, void* object) noexcept;
  KEXFRAMEWORK_API void* GetCodeAddress() noexcept;
  WNDPROC GetWNDPROC() noexcept { return reinterpret_cast<WNDPROC>(GetCodeAddress()); }

 private:
  CStdThunk* m_thunk = nullptr;
};

// A message while a window procedure works on it.
struct _ATL_MSG : MSG {
  _ATL_MSG(HWND window, UINT number, WPARAM w, LPARAM l) : MSG{window, number, w, l, 0, {}} {}
  BOOL bHandled = TRUE;
};

// What windows and dialogs written in C++ have in common.
template <class TBase = CWindow>
class CWindowImplRoot : public TBase, public CMessageMap {
 public:
  static constexpr DWORD WINSTATE_DESTROYED = 1;

  CWindowImplRoot() = default;
  CWindowImplRoot(const CWindowImplRoot&) = default;
  CWindowImplRoot& operator=(const CWindowImplRoot&) = default;
  // Meant to run after the window is gone; it does not destroy it.
  virtual ~CWindowImplRoot() = default;

  // The parent's part of reflection: what a control sent goes back to it as OCM__BASE plus the message. A message that
  // comes from no control is left unhandled.
  LRESULT ReflectNotifications(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled) {
    HWND control = notifying_control(uMsg, wParam, lParam);
    if (!control) {
      bHandled = FALSE;
      return 1;
    }
    return ::SendMessage(control, OCM__BASE + uMsg, wParam, lParam);
  }

  // The control's part: the default treatment of what came back.
  static BOOL DefaultReflectionHandler(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    switch (uMsg) {
      case OCM_COMMAND:
      case OCM_NOTIFY:
      case OCM_PARENTNOTIFY:
      case OCM_DRAWITEM:
      case OCM_MEASUREITEM:
      case OCM_COMPAREITEM:
      case OCM_DELETEITEM:
      case OCM_VKEYTOITEM:
      case OCM_CHARTOITEM:
      case OCM_HSCROLL:
      case OCM_VSCROLL:
      case OCM_CTLCOLORBTN:
      case OCM_CTLCOLORDLG:
      case OCM_CTLCOLOREDIT:
      case OCM_CTLCOLORLISTBOX:
      case OCM_CTLCOLORMSGBOX:
      case OCM_CTLCOLORSCROLLBAR:
      case OCM_CTLCOLORSTATIC:
        lResult = ::DefWindowProc(hWnd, uMsg - OCM__BASE, wParam, lParam);
        return TRUE;
      default:
        return FALSE;
    }
  }

 protected:
  // Makes the message the current one for as long as it is worked on. The outermost message of a window that was
  // destroyed meanwhile tells the object so at its end: no frame of the object is left then, so it may delete itself.
  template <typename Handler, typename AtTheEnd>
  LRESULT work_on(UINT uMsg, WPARAM wParam, LPARAM lParam, Handler handler, AtTheEnd at_the_end) {
    _ATL_MSG message(this->m_hWnd, uMsg, wParam, lParam);
    const _ATL_MSG* outer = m_pCurrentMsg;
    LRESULT result;
    {
      CurrentMessage current(m_pCurrentMsg, message);
      result = handler();
    }
    if (!outer && (m_dwState & WINSTATE_DESTROYED)) {
      m_dwState &= ~WINSTATE_DESTROYED;
      this->m_hWnd = nullptr;
      at_the_end(message.hwnd);
    }
    return result;
  }

  CWndProcThunk m_thunk;
  const _ATL_MSG* m_pCurrentMsg = nullptr;
  DWORD m_dwState = 0;

 private:
  // Puts the message back that was the current one before, where a handler throws too.
  class CurrentMessage {
   public:
    CurrentMessage(const _ATL_MSG*& current, const _ATL_MSG& message)
        : m_current(current), m_outer(std::exchange(current, &message)) {}
    CurrentMessage(const CurrentMessage&) = delete;
    CurrentMessage& operator=(const CurrentMessage&) = delete;
    ~CurrentMessage() { m_current = m_outer; }

   private:
    const _ATL_MSG*& m_current;
    const _ATL_MSG* m_outer;
  };

  HWND notifying_control(UINT uMsg, WPARAM wParam, LPARAM lParam) const {
    switch (uMsg) {
      case WM_COMMAND:  // from a menu or an accelerator without a control
      case WM_VKEYTOITEM:
      case WM_CHARTOITEM:
      case WM_HSCROLL:
      case WM_VSCROLL:
      case WM_CTLCOLORBTN:
      case WM_CTLCOLORDLG:
      case WM_CTLCOLOREDIT:
      case WM_CTLCOLORLISTBOX:
      case WM_CTLCOLORMSGBOX:
      case WM_CTLCOLORSCROLLBAR:
      case WM_CTLCOLORSTATIC:
        return reinterpret_cast<HWND>(lParam);
      case WM_NOTIFY:
        return reinterpret_cast<const NMHDR*>(lParam)->hwndFrom;
      case WM_PARENTNOTIFY:
        switch (LOWORD(wParam)) {
          case WM_CREATE:
          case WM_DESTROY:
            return reinterpret_cast<HWND>(lParam);
          default:
            return ::GetDlgItem(this->m_hWnd, HIWORD(wParam));
        }
      // Without a control's identifier it is a menu that wants to be drawn or measured.
      case WM_DRAWITEM:
        return wParam ? reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)->hwndItem : nullptr;
      case WM_MEASUREITEM:
        return wParam ? ::GetDlgItem(this->m_hWnd,
                                     static_cast<int>(reinterpret_cast<const MEASUREITEMSTRUCT*>(lParam)->CtlID))
                      : nullptr;
      case WM_COMPAREITEM:
        return reinterpret_cast<const COMPAREITEMSTRUCT*>(lParam)->hwndItem;
      case WM_DELETEITEM:
        return reinterpret_cast<const DELETEITEMSTRUCT*>(lParam)->hwndItem;
      default:
        return nullptr;
    }
  }
};

// A window procedure over a message map, for windows of a class of ours and for windows that were there before.
template <class TBase = CWindow, class TWinTraits = CControlWinTraits>
class CWindowImplBaseT : public CWindowImplRoot<TBase> {
 public:
  // The procedure behind the thunk.
  virtual WNDPROC GetWindowProc() { return WindowProc; }
  // The window is gone, and so is every frame of the object: a place for `delete this`.
  virtual void OnFinalMessage(HWND) {}

  static DWORD GetWndStyle(DWORD style) { return TWinTraits::GetWndStyle(style); }
  static DWORD GetWndExStyle(DWORD style) { return TWinTraits::GetWndExStyle(style); }

  // Creates a window of a registered class. A child without an identifier gets one of the object's address.
  HWND Create(HWND parent, _U_RECT rect, LPCTSTR name, DWORD style, DWORD extendedStyle, _U_MENUorID menuOrId,
              ATOM atom, LPVOID parameter = nullptr) {
    ATLASSERT(!this->m_hWnd);
    if (!atom) return nullptr;
    if (!this->m_thunk.Init(nullptr, nullptr)) {
      SetLastError(ERROR_OUTOFMEMORY);
      return nullptr;
    }
    _AtlCreateWndData waiting(this);
    if (!menuOrId.m_hMenu && (style & WS_CHILD)) menuOrId.m_hMenu = reinterpret_cast<HMENU>(this);
    const RECT& place = rect.m_lpRect ? *rect.m_lpRect : CWindow::rcDefault;
    HWND window = ::CreateWindowEx(extendedStyle, MAKEINTATOM(atom), name, style, place.left, place.top,
                                   place.right - place.left, place.bottom - place.top, parent, menuOrId.m_hMenu,
                                   _AtlBaseModule.GetModuleInstance(), parameter);
    ATLASSERT(this->m_hWnd == window);
    return window;
  }

  // Takes a window over: its messages come here first, and what is not handled goes on to its old procedure. FALSE for
  // a window that is none.
  BOOL SubclassWindow(HWND window) {
    ATLASSERT(!this->m_hWnd);
    if (!::IsWindow(window) || !this->m_thunk.Init(reinterpret_cast<void*>(GetWindowProc()), this)) return FALSE;
    auto ours = reinterpret_cast<LONG_PTR>(this->m_thunk.GetWNDPROC());
    auto old = reinterpret_cast<WNDPROC>(::SetWindowLongPtr(window, GWLP_WNDPROC, ours));
    if (!old) return FALSE;
    m_pfnSuperWindowProc = old;
    this->m_hWnd = window;
    return TRUE;
  }
  // Gives the window its old procedure back and returns it. Null, and everything as it was, where somebody else has
  // taken the window over since (unless it is forced).
  HWND UnsubclassWindow(BOOL force = FALSE) {
    ATLASSERT(this->m_hWnd);
    auto ours = reinterpret_cast<LONG_PTR>(this->m_thunk.GetWNDPROC());
    if (!force && ::GetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC) != ours) return nullptr;
    if (!::SetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc)))
      return nullptr;
    m_pfnSuperWindowProc = ::DefWindowProc;
    return std::exchange(this->m_hWnd, nullptr);
  }

  // The object may be gone with the window, where OnFinalMessage deletes it. One that never had a window procedure
  // only names its window, as a CWindow does.
  BOOL DestroyWindow() {
    return this->m_thunk.GetCodeAddress() ? ::DestroyWindow(this->m_hWnd) : TBase::DestroyWindow();
  }

  // What the window would do without us, with the current message or another one.
  LRESULT DefWindowProc() {
    const _ATL_MSG* message = this->m_pCurrentMsg;
    return message ? DefWindowProc(message->message, message->wParam, message->lParam) : 0;
  }
  LRESULT DefWindowProc(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::CallWindowProc(m_pfnSuperWindowProc, this->m_hWnd, uMsg, wParam, lParam);
  }

  // The procedure of a new window, for its first message: from then on the object's own is called.
  static LRESULT CALLBACK StartWindowProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = static_cast<CWindowImplBaseT*>(_AtlCreateWndData::Extract());
    if (!self) return 0;
    self->m_hWnd = hWnd;
    self->m_thunk.Init(reinterpret_cast<void*>(self->GetWindowProc()), self);
    WNDPROC ours = self->m_thunk.GetWNDPROC();
    ::SetWindowLongPtr(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ours));
    return ours(hWnd, uMsg, wParam, lParam);
  }
  // Called by the thunk, which puts the object where the window was.
  static LRESULT CALLBACK WindowProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<CWindowImplBaseT*>(hWnd);
    return self->work_on(
        uMsg, wParam, lParam, [=] { return self->handle(uMsg, wParam, lParam); },
        [=](HWND gone) {
          self->m_pfnSuperWindowProc = ::DefWindowProc;  // the next window may be of another class
          self->OnFinalMessage(gone);
        });
  }

  WNDPROC m_pfnSuperWindowProc = ::DefWindowProc;

 private:
  LRESULT handle(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    BOOL handled = this->ProcessWindowMessage(this->m_hWnd, uMsg, wParam, lParam, result, 0);
    if (uMsg != WM_NCDESTROY) return handled ? result : DefWindowProc(uMsg, wParam, lParam);
    if (!handled) result = last_message(wParam, lParam);
    this->m_dwState |= CWindowImplRoot<TBase>::WINSTATE_DESTROYED;
    return result;
  }

  LRESULT last_message(WPARAM wParam, LPARAM lParam) {
    auto before = ::GetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC);
    LRESULT result = DefWindowProc(WM_NCDESTROY, wParam, lParam);
    // Nobody took the window over meanwhile: leave it as we found it.
    if (m_pfnSuperWindowProc != ::DefWindowProc && ::GetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC) == before)
      ::SetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc));
    return result;
  }
};

// A window class T of the application's: a message map, and a class of windows that is registered when it is needed.
// Where TBase has a window class ("EDIT"), T's class is a superclass of that one.
template <class T, class TBase = CWindow, class TWinTraits = CControlWinTraits>
class CWindowImpl : public CWindowImplBaseT<TBase, TWinTraits> {
 public:
  using CWindowImplBaseT<TBase, TWinTraits>::StartWindowProc;
  DECLARE_WND_CLASS(nullptr)

  // Null where the class cannot be registered or the window not be made.
  HWND Create(HWND parent, _U_RECT rect = nullptr, LPCTSTR name = nullptr, DWORD style = 0, DWORD extendedStyle = 0,
              _U_MENUorID menuOrId = 0U, LPVOID parameter = nullptr) {
    CWndClassInfo& info = T::GetWndClassInfo();
    if (!info.m_lpszOrigName) info.m_lpszOrigName = this->GetWndClassName();
    ATOM atom = info.Register(&this->m_pfnSuperWindowProc);
    return CWindowImplBaseT<TBase, TWinTraits>::Create(parent, rect, name, T::GetWndStyle(style),
                                                       T::GetWndExStyle(extendedStyle), menuOrId, atom, parameter);
  }
};

// A dialog procedure over a message map.
template <class TBase = CWindow>
class CDialogImplBaseT : public CWindowImplRoot<TBase> {
 public:
  virtual DLGPROC GetDialogProc() { return DialogProc; }
  // As for windows.
  virtual void OnFinalMessage(HWND) {}

  // Ends a modal dialog: DoModal returns this result.
  BOOL EndDialog(INT_PTR result) {
    ATLASSERT(this->IsWindow());
    return ::EndDialog(this->m_hWnd, result);
  }

  static INT_PTR CALLBACK StartDialogProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = static_cast<CDialogImplBaseT*>(_AtlCreateWndData::Extract());
    if (!self) return FALSE;
    self->m_hWnd = hWnd;
    self->m_thunk.Init(reinterpret_cast<void*>(self->GetDialogProc()), self);
    auto ours = reinterpret_cast<DLGPROC>(self->m_thunk.GetCodeAddress());
    ::SetWindowLongPtr(hWnd, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(ours));
    return ours(hWnd, uMsg, wParam, lParam);
  }
  static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<CDialogImplBaseT*>(hWnd);
    return self->work_on(
        uMsg, wParam, lParam, [=] { return self->handle(uMsg, wParam, lParam); },
        [=](HWND gone) { self->OnFinalMessage(gone); });
  }

 protected:
  // Readies the procedure, and makes the dialog with it; `failure` where there is no memory for it.
  template <typename Result, typename MakeDialog>
  Result create(Result failure, MakeDialog make_dialog) {
    ATLASSERT(!this->m_hWnd);
    if (!this->m_thunk.Init(nullptr, nullptr)) {
      SetLastError(ERROR_OUTOFMEMORY);
      return failure;
    }
    _AtlCreateWndData waiting(static_cast<CDialogImplBaseT*>(this));
    return make_dialog(_AtlBaseModule.GetResourceInstance());
  }

 private:
  LRESULT handle(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    BOOL handled = this->ProcessWindowMessage(this->m_hWnd, uMsg, wParam, lParam, result, 0);
    if (uMsg == WM_NCDESTROY) this->m_dwState |= CWindowImplRoot<TBase>::WINSTATE_DESTROYED;
    if (!handled) return FALSE;
    switch (uMsg) {
      // The answers to these are the dialog procedure's own result.
      case WM_COMPAREITEM:
      case WM_VKEYTOITEM:
      case WM_CHARTOITEM:
      case WM_INITDIALOG:
      case WM_QUERYDRAGICON:
      case WM_CTLCOLORMSGBOX:
      case WM_CTLCOLOREDIT:
      case WM_CTLCOLORLISTBOX:
      case WM_CTLCOLORBTN:
      case WM_CTLCOLORDLG:
      case WM_CTLCOLORSCROLLBAR:
      case WM_CTLCOLORSTATIC:
        return result;
      default:
        ::SetWindowLongPtr(this->m_hWnd, DWLP_MSGRESULT, result);
        return TRUE;
    }
  }
};

// A dialog T of the application's, made from the dialog resource T::IDD of the module's resources.
template <class T, class TBase = CWindow>
class CDialogImpl : public CDialogImplBaseT<TBase> {
 public:
  // Runs the dialog to its end. -1 where it could not be made.
  INT_PTR DoModal(HWND parent = ::GetActiveWindow(), LPARAM parameter = 0) {
    return this->create(INT_PTR{-1}, [=](HINSTANCE resources) {
      return ::DialogBoxParam(resources, dialog_template(), parent, T::StartDialogProc, parameter);
    });
  }
  // Makes it modeless. Null where it could not be made.
  HWND Create(HWND parent, LPARAM parameter = 0) {
    return this->create(HWND{}, [=](HINSTANCE resources) {
      return ::CreateDialogParam(resources, dialog_template(), parent, T::StartDialogProc, parameter);
    });
  }
  // For a modeless dialog; a modal one is ended by EndDialog.
  BOOL DestroyWindow() { return ::DestroyWindow(this->m_hWnd); }

 private:
  static LPCTSTR dialog_template() { return MAKEINTRESOURCE(static_cast<WORD>(T::IDD)); }
};

// ---- ActiveX hosting -----------------------------------------------------------------------------------------------

// The window class that hosts an ActiveX control: its window text says which, as a class identifier in braces or a
// ProgID. A text that names no control makes the creation of the window fail.
#define ATLAXWIN_CLASS "AtlAxWin140"

// Registers that class, for all modules of the process. FALSE where the system refuses it. May be called again.
KEXFRAMEWORK_API BOOL AtlAxWinInit();

// Puts a control that is ready, new or with its state loaded, into such a window; the window keeps a reference until it
// is destroyed. The object that hosts it comes with a reference for the caller.
KEXFRAMEWORK_API HRESULT AtlAxAttachControl(IUnknown* control, HWND window, IUnknown** host);

// The control in such a window, with a reference for the caller. E_FAIL where the window
// hosts nothing, E_POINTER for a null target.
KEXFRAMEWORK_API HRESULT AtlAxGetControl(HWND window, IUnknown** control);

// A window of that class.
template <class TBase = CWindow>
class CAxWindowT : public TBase {
 public:
  CAxWindowT(HWND window = nullptr) : TBase(window) {}
  CAxWindowT& operator=(HWND window) {
    this->m_hWnd = window;
    return *this;
  }

  static LPCTSTR GetWndClassName() {
    AtlAxWinInit();
    return ATLAXWIN_CLASS;
  }
  HWND Create(HWND parent, _U_RECT rect = nullptr, LPCTSTR name = nullptr, DWORD style = 0, DWORD extendedStyle = 0,
              _U_MENUorID menuOrId = 0U, LPVOID parameter = nullptr) {
    return CWindow::Create(GetWndClassName(), parent, rect, name, style, extendedStyle, menuOrId, parameter);
  }

  // An interface of the control; the failure of AtlAxGetControl or of QueryInterface.
  template <class Q>
  HRESULT QueryControl(Q** target) {
    if (!target) return E_POINTER;
    *target = nullptr;
    CComPtr<IUnknown> control;
    HRESULT result = AtlAxGetControl(this->m_hWnd, &control);
    return SUCCEEDED(result) ? control.QueryInterface(target) : result;
  }
};
using CAxWindow = CAxWindowT<CWindow>;

}  // namespace ATL

#endif
