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

#ifndef ATLASSERT
#define ATLASSERT(expression) assert(expression)
#endif

namespace ATL {

// Throws MFC's exception for an HRESULT: CMemoryException for E_OUTOFMEMORY, COleException for all others.
[[noreturn]] KEXFRAMEWORK_API void AtlThrow(HRESULT result);

// GetLastError() as an HRESULT.
inline HRESULT AtlHresultFromLastError() { return HRESULT_FROM_WIN32(GetLastError()); }

}  // namespace ATL

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif

#endif
