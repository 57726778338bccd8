// Windows that host ActiveX controls. Part of <atlwin.h>.
#ifndef FRAMEWORK_ATLWIN_AX_H
#define FRAMEWORK_ATLWIN_AX_H

#include <kexframework/atlwin/window.h>

namespace ATL {

// The window class that hosts an ActiveX control. The window text names the control by its class identifier in braces
// or its ProgID. If the text names no control the window is not created.
#define ATLAXWIN_CLASS "AtlAxWin140"

// A window of that class. A source that uses GetWndClassName, Create or QueryControl includes <atlhost.h>, which
// defines them.
template <class TBase = CWindow>
class CAxWindowT : public TBase {
 public:
  CAxWindowT(HWND window = nullptr) : TBase(window) {}
  CAxWindowT& operator=(HWND window) {
    this->m_hWnd = window;
    return *this;
  }

  static LPCTSTR GetWndClassName();
  HWND Create(HWND parent, _U_RECT rect = nullptr, LPCTSTR name = nullptr, DWORD style = 0, DWORD extendedStyle = 0,
              _U_MENUorID menuOrId = 0U, LPVOID parameter = nullptr) {
    return CWindow::Create(GetWndClassName(), parent, rect, name, style, extendedStyle, menuOrId, parameter);
  }

  // Returns an interface of the control, or the error of AtlAxGetControl or QueryInterface.
  template <class Q>
  HRESULT QueryControl(Q** target);
};
using CAxWindow = CAxWindowT<CWindow>;

}  // namespace ATL

#endif
