#include <afxwin.h>
#include <commctrl.h>

IMPLEMENT_DYNCREATE(CWnd, CObject)

CWnd::CWnd() = default;

CWnd::~CWnd() { CWnd::DestroyWindow(); }

BOOL CWnd::Attach(HWND window) {
  if (!window || ::IsWindow(m_hWnd)) return FALSE;
  m_hWnd = window;
  // Subclassed to clear the handle when somebody else destroys the window. A window of another thread cannot be
  // subclassed, and this thread cannot destroy it either.
  SetWindowSubclass(window, watch, reinterpret_cast<UINT_PTR>(this), 0);
  return TRUE;
}

HWND CWnd::Detach() {
  HWND window = std::exchange(m_hWnd, nullptr);
  if (window) RemoveWindowSubclass(window, watch, reinterpret_cast<UINT_PTR>(this));
  return window;
}

LRESULT CALLBACK CWnd::watch(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR object, DWORD_PTR) {
  if (message == WM_NCDESTROY) reinterpret_cast<CWnd*>(object)->Detach();
  return DefSubclassProc(window, message, wParam, lParam);
}

BOOL CWnd::Create(LPCTSTR className, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                  CCreateContext*) {
  if (::IsWindow(m_hWnd)) return FALSE;
  return Attach(CreateWindowExA(0, className, windowName, style | WS_CHILD, rect.left, rect.top, rect.right - rect.left,
                                rect.bottom - rect.top, parent ? parent->m_hWnd : nullptr,
                                reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), AfxGetInstanceHandle(), nullptr));
}

BOOL CWnd::DestroyWindow() { return m_hWnd && ::DestroyWindow(m_hWnd); }
