#include <afx.h>
#include <atlwin.h>

#include <framework/system_library.h>

#include <cstdio>

namespace ATL {

namespace {

CComAutoCriticalSection registering;

// Not at the end of a process: then the system cleans up windows and classes.
bool process_is_ending() {
  BOOLEAN(NTAPI * ask)();
  return framework::SystemLibrary("ntdll.dll").find(ask, "RtlDllShutdownInProgress") && ask();
}

// Makes the class a copy of another one, with its own name, procedure and module.
bool copy_original(CWndClassInfo& info) {
  WNDCLASSEX original = {};
  original.cbSize = sizeof original;
  if (!GetClassInfoEx(nullptr, info.m_lpszOrigName, &original) &&
      !GetClassInfoEx(info.m_wc.hInstance, info.m_lpszOrigName, &original))
    return false;
  info.pWndProc = original.lpfnWndProc;
  original.lpszClassName = info.m_wc.lpszClassName;
  original.lpfnWndProc = info.m_wc.lpfnWndProc;
  original.hInstance = info.m_wc.hInstance;
  original.style &= ~static_cast<UINT>(CS_GLOBALCLASS);
  info.m_wc = original;
  return true;
}

}  // namespace

ATOM CAtlWinModule::register_once(CWndClassInfo& info, HINSTANCE instance, CWndClassInfo*& classes) noexcept {
  CComCritSecLock<CComCriticalSection> lock(registering);
  if (info.m_atom) return info.m_atom;
  if (!info.m_wc.lpszClassName) {
    snprintf(info.m_szAutoName, sizeof info.m_szAutoName, "ATL:%p", static_cast<void*>(&info));
    info.m_wc.lpszClassName = info.m_szAutoName;
  }
  info.m_wc.hInstance = instance;
  if (info.m_lpszOrigName) {
    if (!copy_original(info)) return 0;
  } else {
    info.m_wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
  }
  // Two C++ classes with the same class name share the class that is registered first.
  WNDCLASSEX there = {};
  there.cbSize = sizeof there;
  info.m_atom = static_cast<ATOM>(GetClassInfoEx(instance, info.m_wc.lpszClassName, &there));
  if (info.m_atom) return info.m_atom;
  info.m_atom = RegisterClassEx(&info.m_wc);
  if (info.m_atom) {
    info.next = classes;
    classes = &info;
  }
  return info.m_atom;
}

void CAtlWinModule::unregister(CWndClassInfo* classes) noexcept {
  if (!classes || process_is_ending()) return;
  for (CWndClassInfo* info = classes; info; info = info->next)
    UnregisterClass(MAKEINTATOM(info->m_atom), info->m_wc.hInstance);
}

}  // namespace ATL
