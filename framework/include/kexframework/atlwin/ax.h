// Windows that host ActiveX controls. Part of <atlwin.h>.
#ifndef FRAMEWORK_ATLWIN_AX_H
#define FRAMEWORK_ATLWIN_AX_H

#include <kexframework/atlwin/window.h>

namespace ATL {

// The window class that hosts an ActiveX control. The window text names the control by its class identifier in braces
// or its ProgID. If the text names no control the window is not created.
#define ATLAXWIN_CLASS "AtlAxWin140"

// Registers that class for all modules of the process. Returns FALSE on failure. May be called again.
KEXFRAMEWORK_API BOOL AtlAxWinInit();

// Attaches an initialised control to such a window. The window holds a reference until it is destroyed. The host object
// is returned with a reference for the caller.
KEXFRAMEWORK_API HRESULT AtlAxAttachControl(IUnknown* control, HWND window, IUnknown** host);

// Returns the control in such a window, with a reference for the caller. E_FAIL if the window hosts none, E_POINTER for
// a null target.
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

  // Returns an interface of the control, or the error of AtlAxGetControl or QueryInterface.
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
