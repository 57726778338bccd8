// Windows written in C++: CWindowImpl and its bases. Part of <atlwin.h>.
#ifndef FRAMEWORK_ATLWIN_WINDOW_IMPL_H
#define FRAMEWORK_ATLWIN_WINDOW_IMPL_H

#include <kexframework/atlwin/message_map.h>
#include <kexframework/atlwin/window.h>
#include <kexframework/atlwin/window_class.h>

#include <olectl.h>

#include <utility>

namespace ATL {

struct CStdThunk;

// The window procedure of one object: code, made by the system (atlthunk.dll), that calls a function with the object in
// place of the window handle. By design it is freed with the object and not with the window: messages may still arrive
// through it when the window is destroyed.
class CWndProcThunk {
 public:
  CWndProcThunk() = default;
  CWndProcThunk(const CWndProcThunk&) = delete;
  CWndProcThunk& operator=(const CWndProcThunk&) = delete;
  KEXFRAMEWORK_API ~CWndProcThunk();

  // Returns FALSE if no memory is left. May be called again with another function or object.
  KEXFRAMEWORK_API BOOL Init(void* function, void* object) noexcept;
  KEXFRAMEWORK_API void* GetCodeAddress() noexcept;
  WNDPROC GetWNDPROC() noexcept { return reinterpret_cast<WNDPROC>(GetCodeAddress()); }

 private:
  CStdThunk* m_thunk = nullptr;
};

// The message that a window procedure handles.
struct _ATL_MSG : MSG {
  _ATL_MSG(HWND window, UINT number, WPARAM w, LPARAM l) : MSG{window, number, w, l, 0, {}} {}
};

// The common base of windows and dialogs.
template <class TBase = CWindow>
class CWindowImplRoot : public TBase, public CMessageMap {
 public:
  static constexpr DWORD WINSTATE_DESTROYED = 1;

  CWindowImplRoot() = default;
  CWindowImplRoot(const CWindowImplRoot&) = delete;  // the real one copies its procedure, and both objects free it
  CWindowImplRoot& operator=(const CWindowImplRoot&) = delete;
  // Destroy the window before the object; the destructor does not.
  virtual ~CWindowImplRoot() = default;

  // Reflection in the parent: sends a control's message back to it as OCM__BASE plus the message. A message that does
  // not come from a control is not handled.
  LRESULT ReflectNotifications(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled) {
    HWND control = notifying_control(uMsg, wParam, lParam);
    if (!control) {
      bHandled = FALSE;
      return 1;
    }
    return ::SendMessage(control, OCM__BASE + uMsg, wParam, lParam);
  }

  // Reflection in the control: the default treatment.
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
  // Makes the message current while it is handled. If the window is destroyed meanwhile, the outermost message notifies
  // the object at its end. No function of the object runs at that time, so it may delete itself.
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
  // Restores the previous message, also when a handler throws.
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
      case WM_COMMAND:  // from a menu or an accelerator there is no control
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
      // Without a control identifier the item belongs to a menu.
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

// A window procedure over a message map, for own windows and for subclassed ones.
template <class TBase = CWindow, class TWinTraits = CControlWinTraits>
class CWindowImplBaseT : public CWindowImplRoot<TBase> {
 public:
  // The procedure that the thunk calls.
  virtual WNDPROC GetWindowProc() { return WindowProc; }
  // Called after the window is destroyed, when no function of the object runs any more. May `delete this`.
  virtual void OnFinalMessage(HWND) {}

  static DWORD GetWndStyle(DWORD style) { return TWinTraits::GetWndStyle(style); }
  static DWORD GetWndExStyle(DWORD style) { return TWinTraits::GetWndExStyle(style); }

  // Creates a window of a registered class. A child without an identifier gets one from the address of the object.
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
                                   _AtlExtent(place.left, place.right), _AtlExtent(place.top, place.bottom), parent,
                                   menuOrId.m_hMenu, _AtlBaseModule.GetModuleInstance(), parameter);
    ATLASSERT(this->m_hWnd == window);
    return window;
  }

  // Subclasses a window: its messages come here first, and unhandled ones go to its previous procedure. Returns FALSE
  // if the system refuses.
  BOOL SubclassWindow(HWND window) {
    ATLASSERT(!this->m_hWnd);
    ATLASSERT(::IsWindow(window));
    if (!this->m_thunk.Init(reinterpret_cast<void*>(GetWindowProc()), this)) return FALSE;
    auto ours = reinterpret_cast<LONG_PTR>(this->m_thunk.GetWNDPROC());
    auto old = reinterpret_cast<WNDPROC>(::SetWindowLongPtr(window, GWLP_WNDPROC, ours));
    if (!old) return FALSE;
    m_pfnSuperWindowProc = old;
    this->m_hWnd = window;
    return TRUE;
  }
  // Restores the previous procedure and returns the window. Returns null, and does nothing, if somebody else has
  // subclassed the window since, unless `force` is set. The object must have subclassed or created a window.
  HWND UnsubclassWindow(BOOL force = FALSE) {
    ATLASSERT(this->m_hWnd);
    auto ours = reinterpret_cast<LONG_PTR>(this->m_thunk.GetWNDPROC());
    ATLASSERT(ours);
    if (!force && ::GetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC) != ours) return nullptr;
    if (!::SetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc)))
      return nullptr;
    m_pfnSuperWindowProc = ::DefWindowProc;
    return std::exchange(this->m_hWnd, nullptr);
  }

  // OnFinalMessage may delete the object during the call. An object without a window procedure only refers to its
  // window, like CWindow.
  BOOL DestroyWindow() {
    return this->m_thunk.GetCodeAddress() ? ::DestroyWindow(this->m_hWnd) : TBase::DestroyWindow();
  }

  // Passes the current message, or another one, to the previous procedure.
  LRESULT DefWindowProc() {
    const _ATL_MSG* message = this->m_pCurrentMsg;
    return message ? DefWindowProc(message->message, message->wParam, message->lParam) : 0;
  }
  LRESULT DefWindowProc(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::CallWindowProc(m_pfnSuperWindowProc, this->m_hWnd, uMsg, wParam, lParam);
  }

  // The procedure of a new window for its first message. It installs the object's own.
  static LRESULT CALLBACK StartWindowProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = static_cast<CWindowImplBaseT*>(_AtlCreateWndData::Extract());
    if (!self) return 0;
    self->m_hWnd = hWnd;
    self->m_thunk.Init(reinterpret_cast<void*>(self->GetWindowProc()), self);
    WNDPROC ours = self->m_thunk.GetWNDPROC();
    ::SetWindowLongPtr(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ours));
    return ours(hWnd, uMsg, wParam, lParam);
  }
  // Called by the thunk: hWnd is the object.
  static LRESULT CALLBACK WindowProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<CWindowImplBaseT*>(hWnd);
    return self->work_on(
        uMsg, wParam, lParam, [=] { return self->handle(uMsg, wParam, lParam); },
        [=](HWND gone) {
          self->m_pfnSuperWindowProc = ::DefWindowProc;  // the next window may have another class
          self->OnFinalMessage(gone);
        });
  }

  WNDPROC m_pfnSuperWindowProc = ::DefWindowProc;

 private:
  LRESULT handle(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    BOOL handled = this->ProcessWindowMessage(this->m_hWnd, uMsg, wParam, lParam, result, 0);
    if (handled) return result;  // also WM_NCDESTROY: such an object never learns that its window is gone
    if (uMsg != WM_NCDESTROY) return DefWindowProc(uMsg, wParam, lParam);
    result = last_message(wParam, lParam);
    this->m_dwState |= CWindowImplRoot<TBase>::WINSTATE_DESTROYED;
    return result;
  }

  LRESULT last_message(WPARAM wParam, LPARAM lParam) {
    auto before = ::GetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC);
    LRESULT result = DefWindowProc(WM_NCDESTROY, wParam, lParam);
    // The procedure is still ours: restore the previous one.
    if (m_pfnSuperWindowProc != ::DefWindowProc && ::GetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC) == before)
      ::SetWindowLongPtr(this->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc));
    return result;
  }
};

// A window class T: a message map, and a class of windows that is registered at its first use. If TBase has a window
// class ("EDIT"), the class of T is a superclass of it.
template <class T, class TBase = CWindow, class TWinTraits = CControlWinTraits>
class CWindowImpl : public CWindowImplBaseT<TBase, TWinTraits> {
 public:
  using CWindowImplBaseT<TBase, TWinTraits>::StartWindowProc;
  DECLARE_WND_CLASS(nullptr)

  // Returns null if the class cannot be registered or the window cannot be created.
  HWND Create(HWND parent, _U_RECT rect = nullptr, LPCTSTR name = nullptr, DWORD style = 0, DWORD extendedStyle = 0,
              _U_MENUorID menuOrId = 0U, LPVOID parameter = nullptr) {
    CWndClassInfo& info = T::GetWndClassInfo();
    if (!info.m_lpszOrigName) info.m_lpszOrigName = this->GetWndClassName();
    ATOM atom = info.Register(&this->m_pfnSuperWindowProc);
    return CWindowImplBaseT<TBase, TWinTraits>::Create(parent, rect, name, T::GetWndStyle(style),
                                                       T::GetWndExStyle(extendedStyle), menuOrId, atom, parameter);
  }
};

}  // namespace ATL

#endif
