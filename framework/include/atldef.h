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

#include <cstdio>
#include <cstdlib>

// Throws the exception for an HRESULT. In a source with MFC that is CMemoryException for E_OUTOFMEMORY and
// COleException for all others, by pointer; in one without, CAtlException. A program in which both kinds of source use
// the same template gets either.
#ifdef _AFX
#define AtlThrow ATL::AtlThrowImpl
#else
#define AtlThrow ATL::AtlThrowWithoutMfc
#endif

// Ends the program if the expression is false. The real one does so in debug builds only; this one always does, so that
// every build finds the mistake.
#ifndef ATLASSERT
#define ATLASSERT(expression) \
  (static_cast<void>((expression) || (ATL::_AtlAssertionFailed(#expression, __FILE__, __LINE__), false)))
#endif

namespace ATL {

[[noreturn]] inline void _AtlAssertionFailed(const char* expression, const char* file, int line) noexcept {
  std::fprintf(stderr, "%s:%d: assertion failed: %s\n", file, line, expression);
  std::abort();
}

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
