// MFC's synchronisation objects.
#ifndef FRAMEWORK_AFXMT_H
#define FRAMEWORK_AFXMT_H

#include <afx.h>

// Owns the handle of a kernel object to wait for.
class KEXFRAMEWORK_API CSyncObject : public CObject {
 public:
  // The derived class creates the handle. The name is not stored.
  explicit CSyncObject(LPCTSTR name);
  // Closes the handle.
  ~CSyncObject() override;

  operator HANDLE() const { return m_hObject; }

  // Waits for the object (WaitForSingleObject). Returns FALSE on timeout or failure. The timeout is in milliseconds.
  virtual BOOL Lock(DWORD timeout = INFINITE);

  HANDLE m_hObject = nullptr;
};

// An event. It wakes one waiting thread (auto-reset) or all of them (manual reset).
class KEXFRAMEWORK_API CEvent : public CSyncObject {
 public:
  // Opens an existing event of this name; its state does not change. Throws CResourceException if the event cannot be
  // created, for example because the name belongs to another kind of object.
  explicit CEvent(BOOL initiallyOwn = FALSE, BOOL manualReset = FALSE, LPCTSTR name = nullptr,
                  LPSECURITY_ATTRIBUTES security = nullptr);

  BOOL SetEvent();
  BOOL ResetEvent();
};

#endif
