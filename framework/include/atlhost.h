// ATL's host for ActiveX controls: the window class, and the functions behind CAxWindow.
#ifndef FRAMEWORK_ATLHOST_H
#define FRAMEWORK_ATLHOST_H

#include <atlwin.h>

namespace ATL {

// Registers that class for all modules of the process. Returns FALSE on failure. May be called again.
KEXFRAMEWORK_API BOOL AtlAxWinInit();

// Attaches an initialised control to such a window. The window holds a reference until it is destroyed. The host object
// is returned with a reference for the caller.
KEXFRAMEWORK_API HRESULT AtlAxAttachControl(IUnknown* control, HWND window, IUnknown** host);

// Returns the control in such a window, with a reference for the caller. E_FAIL if the window hosts none, E_POINTER for
// a null target.
KEXFRAMEWORK_API HRESULT AtlAxGetControl(HWND window, IUnknown** control);

template <class TBase>
LPCTSTR CAxWindowT<TBase>::GetWndClassName() {
  AtlAxWinInit();
  return ATLAXWIN_CLASS;
}

template <class TBase>
template <class Q>
HRESULT CAxWindowT<TBase>::QueryControl(Q** target) {
  if (!target) return E_POINTER;
  *target = nullptr;
  CComPtr<IUnknown> control;
  HRESULT result = AtlAxGetControl(this->m_hWnd, &control);
  return SUCCEEDED(result) ? control.QueryInterface(target) : result;
}

}  // namespace ATL

#endif
