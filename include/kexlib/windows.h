// windows.h, for headers that need no MFC. A source that has included neither windows.h nor MFC gets both, MFC first,
// so that headers of kexlib may be included in any order. Where no MFC is on the include path it gets windows.h alone:
// the headers in kexlib/testing need no more.
#ifndef KEXLIB_WINDOWS_H
#define KEXLIB_WINDOWS_H

#if defined(_AFX) || !defined(_WINDOWS_)
#if __has_include(<afxwin.h>)
#include <kexlib/framework.h>
#else
#include <windows.h>
#endif
#endif

#endif
