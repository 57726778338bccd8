// The base of ATL: module information, critical sections, and COM's value types.
#ifndef FRAMEWORK_ATLBASE_H
#define FRAMEWORK_ATLBASE_H

#include <atlcomcli.h>
#include <atlsimpcoll.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace ATL {

// The instance and resources of a module, DLL or EXE.
class CAtlBaseModule {
 public:
  // The module that this code is compiled into.
  HINSTANCE GetModuleInstance() const noexcept { return reinterpret_cast<HINSTANCE>(&__ImageBase); }
  // The module that contains the resources; the module itself unless SetResourceInstance names another one.
  HINSTANCE GetResourceInstance() const noexcept { return m_hInstResource ? m_hInstResource : GetModuleInstance(); }
  HINSTANCE SetResourceInstance(HINSTANCE instance) noexcept {
    HINSTANCE old = GetResourceInstance();
    m_hInstResource = instance;
    return old;
  }

 private:
  HINSTANCE m_hInstResource = nullptr;
};

// By design an inline variable: each module has its own.
inline constinit CAtlBaseModule _AtlBaseModule;

// A critical section. The caller calls Init before the first use and Term after the last.
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

// A critical section that is initialised by the constructor and deleted by the destructor. The constructor throws on
// failure (AtlThrow).
class CComAutoCriticalSection : public CComCriticalSection {
 public:
  CComAutoCriticalSection() {
    HRESULT result = Init();
    if (FAILED(result)) AtlThrow(result);
  }
  ~CComAutoCriticalSection() { Term(); }
};

// Holds a lock until it is destroyed.
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
