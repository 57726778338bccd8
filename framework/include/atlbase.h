// The base of ATL: what a module knows of itself, critical sections, and COM's values.
#ifndef FRAMEWORK_ATLBASE_H
#define FRAMEWORK_ATLBASE_H

#include <atlcomcli.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace ATL {

// What each module, DLL or EXE, knows of itself.
class CAtlBaseModule {
 public:
  // The module that this code is compiled into.
  HINSTANCE GetModuleInstance() const noexcept { return reinterpret_cast<HINSTANCE>(&__ImageBase); }
  // Where the module's resources are: in itself, until it says otherwise.
  HINSTANCE GetResourceInstance() const noexcept { return m_hInstResource ? m_hInstResource : GetModuleInstance(); }
  HINSTANCE SetResourceInstance(HINSTANCE instance) noexcept {
    HINSTANCE old = GetResourceInstance();
    m_hInstResource = instance;
    return old;
  }

 private:
  HINSTANCE m_hInstResource = nullptr;
};

// An inline variable lives once in each module: just what is wanted here.
inline constinit CAtlBaseModule _AtlBaseModule;

// A critical section whose life the user ends and begins.
class CComCriticalSection {
 public:
  CComCriticalSection() noexcept : m_sec{} {}
  CComCriticalSection(const CComCriticalSection&) = delete;
  CComCriticalSection& operator=(const CComCriticalSection&) = delete;

  HRESULT Init() noexcept { return InitializeCriticalSectionEx(&m_sec, 0, 0) ? S_OK : AtlHresultFromLastError(); }
  HRESULT Term() noexcept {
    DeleteCriticalSection(&m_sec);
    return S_OK;
  }
  HRESULT Lock() noexcept {
    EnterCriticalSection(&m_sec);
    return S_OK;
  }
  HRESULT Unlock() noexcept {
    LeaveCriticalSection(&m_sec);
    return S_OK;
  }

  CRITICAL_SECTION m_sec;
};

// One that is there as long as the object. A failure to make it throws (AtlThrow).
class CComAutoCriticalSection : public CComCriticalSection {
 public:
  CComAutoCriticalSection() {
    HRESULT result = Init();
    if (FAILED(result)) AtlThrow(result);
  }
  ~CComAutoCriticalSection() { Term(); }
};

// Holds a lock for as long as it lives.
template <class TLock>
class CComCritSecLock {
 public:
  explicit CComCritSecLock(TLock& lock) : m_lock(lock) { m_lock.Lock(); }
  CComCritSecLock(const CComCritSecLock&) = delete;
  CComCritSecLock& operator=(const CComCritSecLock&) = delete;
  ~CComCritSecLock() { m_lock.Unlock(); }

 private:
  TLock& m_lock;
};

}  // namespace ATL

#endif
