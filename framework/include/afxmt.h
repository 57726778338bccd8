// MFC's objects of synchronisation.
#ifndef FRAMEWORK_AFXMT_H
#define FRAMEWORK_AFXMT_H

#include <afxwin.h>

// Owns the handle of a kernel object that threads wait for.
class KEXFRAMEWORK_API CSyncObject : public CObject {
 public:
  // The handle is what the derived class makes; the name is kept by the system alone.
  explicit CSyncObject(LPCTSTR name);
  // Closes the handle.
  ~CSyncObject() override;

  operator HANDLE() const { return m_hObject; }

  // Waits (WaitForSingleObject). FALSE where the milliseconds went by, or the wait failed.
  virtual BOOL Lock(DWORD timeout = INFINITE);
  virtual BOOL Unlock() = 0;

  HANDLE m_hObject = nullptr;
};

// Tells one thread (auto-reset) or all (manual reset) that something happened.
class KEXFRAMEWORK_API CEvent : public CSyncObject {
 public:
  // An event of this name that is there already is opened, and stays as it is. What cannot be made, because the name
  // belongs to something else for one, throws CResourceException.
  explicit CEvent(BOOL initiallyOwn = FALSE, BOOL manualReset = FALSE, LPCTSTR name = nullptr,
                  LPSECURITY_ATTRIBUTES security = nullptr);

  BOOL SetEvent();
  BOOL ResetEvent();
  // Nobody owns an event: TRUE, and nothing happens.
  BOOL Unlock() override;
};

#endif
