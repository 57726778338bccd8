#include <afxwin.h>

IMPLEMENT_DYNCREATE(CWnd, CObject)

CWnd::CWnd() = default;

CWnd::~CWnd() { CWnd::DestroyWindow(); }

BOOL CWnd::Attach(HWND window) {
  if (!window || ::IsWindow(m_hWnd)) return FALSE;
  m_hWnd = window;
  return TRUE;
}

HWND CWnd::Detach() { return std::exchange(m_hWnd, nullptr); }

BOOL CWnd::Create(LPCTSTR className, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                  CCreateContext*) {
  if (::IsWindow(m_hWnd)) return FALSE;  // one that went with its parent is none
  m_hWnd = CreateWindowExA(0, className, windowName, style | WS_CHILD, rect.left, rect.top, rect.right - rect.left,
                           rect.bottom - rect.top, parent ? parent->m_hWnd : nullptr,
                           reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), AfxGetInstanceHandle(), nullptr);
  return m_hWnd != nullptr;
}

BOOL CWnd::DestroyWindow() { return m_hWnd && ::DestroyWindow(Detach()); }
