#include <afxwin.h>

HINSTANCE AfxFindStringResourceHandle(UINT id) {
  // The system keeps strings in blocks of sixteen, numbered from 1.
  return AfxFindResourceHandle(MAKEINTRESOURCE(id / 16 + 1), RT_STRING);
}

HINSTANCE AfxFindResourceHandle(LPCSTR, LPCSTR) { return GetModuleHandleA(nullptr); }
