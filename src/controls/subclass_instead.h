#ifndef KEXLIB_CONTROLS_SUBCLASS_INSTEAD_H
#define KEXLIB_CONTROLS_SUBCLASS_INSTEAD_H

#include <kexlib/windows.h>

namespace kexlib {

// Whether the object receives the messages of its window. An object that was only attached (Attach) has no previous
// window procedure.
template <class Base>
bool is_subclassed(const Base& control) {
  return control.m_hWnd && control.m_pfnSuperWindowProc != ::DefWindowProc;
}

// Detaches an ATL object from its window. FALSE, and nothing is changed, if other code has subclassed the window since:
// the object still receives its messages and cannot serve another window.
template <class Base>
BOOL leave_window(Base& control) {
  if (is_subclassed(control)) return control.Base::UnsubclassWindow() != nullptr;
  control.Detach();
  return TRUE;
}

// Subclasses a window in place of the object's current one. FALSE, and nothing is changed, on failure.
template <class Base>
BOOL subclass_instead(Base& control, HWND window) {
  const HWND previous = control.m_hWnd;
  const bool was_subclassed = is_subclassed(control);
  if (!::IsWindow(window) || !leave_window(control)) return FALSE;
  if (control.Base::SubclassWindow(window)) return TRUE;
  if (was_subclassed)
    control.Base::SubclassWindow(previous);
  else
    control.Attach(previous);
  return FALSE;
}

}  // namespace kexlib

#endif
