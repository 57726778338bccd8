// Basic definitions of ATL: its assertion, its error, and the Windows headers below everything else.
#ifndef FRAMEWORK_ATLDEF_H
#define FRAMEWORK_ATLDEF_H

#include <winsock2.h>

#include <windows.h>

#include <ole2.h>
#include <oleauto.h>
#include <tchar.h>

#include <cassert>

#include <kexframework/export.h>

#ifndef ATLASSERT
#define ATLASSERT(expression) assert(expression)
#endif

namespace ATL {

// Throws what MFC throws: the memory exception for E_OUTOFMEMORY, an OLE exception with this code for everything else.
[[noreturn]] KEXFRAMEWORK_API void AtlThrow(HRESULT result);

// GetLastError() as an HRESULT.
inline HRESULT AtlHresultFromLastError() { return HRESULT_FROM_WIN32(GetLastError()); }

}  // namespace ATL

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif

#endif
