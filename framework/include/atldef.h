// Basic definitions of ATL: the assertion, AtlThrow, and the Windows headers that all others need.
#ifndef FRAMEWORK_ATLDEF_H
#define FRAMEWORK_ATLDEF_H

#include <kexframework/export.h>

#ifndef _WINSOCKAPI_  // windows.h brings the older interface, which excludes this one
#include <winsock2.h>
#endif
#include <windows.h>
#include <ole2.h>
#include <oleauto.h>
#include <tchar.h>

#include <cassert>

// Throws the exception for an HRESULT. In a source with MFC that is CMemoryException for E_OUTOFMEMORY and
// COleException for all others, by pointer; in one without, CAtlException. A program in which both kinds of source use
// the same template gets either.
#ifdef _AFX
#define AtlThrow ATL::AtlThrowImpl
#else
#define AtlThrow ATL::AtlThrowWithoutMfc
#endif

#ifndef ATLASSERT
#define ATLASSERT(expression) assert(expression)
#endif

namespace ATL {

// What AtlThrow throws in a source without MFC. Thrown by value.
class CAtlException {
 public:
  CAtlException(HRESULT result = E_FAIL) noexcept : m_hr(result) {}
  operator HRESULT() const noexcept { return m_hr; }

  HRESULT m_hr;
};

[[noreturn]] KEXFRAMEWORK_API void AtlThrowImpl(HRESULT result);
[[noreturn]] inline void AtlThrowWithoutMfc(HRESULT result) { throw CAtlException(result); }

// GetLastError() as an HRESULT.
inline HRESULT AtlHresultFromLastError() { return HRESULT_FROM_WIN32(GetLastError()); }

}  // namespace ATL

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif

#endif
