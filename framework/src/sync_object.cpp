#include <afxmt.h>
#include <afxwin.h>

CSyncObject::CSyncObject(LPCTSTR) {}

CSyncObject::~CSyncObject() {
  if (m_hObject) CloseHandle(m_hObject);
}

BOOL CSyncObject::Lock(DWORD timeout) {
  DWORD result = WaitForSingleObject(m_hObject, timeout);
  return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

CEvent::CEvent(BOOL initiallyOwn, BOOL manualReset, LPCTSTR name, LPSECURITY_ATTRIBUTES security) : CSyncObject(name) {
  m_hObject = CreateEventA(security, manualReset, initiallyOwn, name);
  if (!m_hObject) AfxThrowResourceException();
}

BOOL CEvent::SetEvent() { return ::SetEvent(m_hObject); }

BOOL CEvent::ResetEvent() { return ::ResetEvent(m_hObject); }
