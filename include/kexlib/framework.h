// MFC, ATL and their strings, in the order that their headers demand. The headers of kexlib that have a string or a
// class of MFC in them include this one first; after it, a source may include windows.h and more of the frameworks.
//
// MFC must come before windows.h, and all that kexlib.dll exports is built with MFC: its CString is MFC's, and what
// AtlThrow throws is MFC's. So include a header of kexlib, or <afxwin.h>, before <windows.h> and before ATL.
#ifndef KEXLIB_FRAMEWORK_H
#define KEXLIB_FRAMEWORK_H

#include <kexlib/export.h>

#if defined(_WINDOWS_) && !defined(_AFX)
#error "kexlib needs MFC, which must come before windows.h and before ATL: include <afxwin.h> or this header first"
#endif

// MFC and WTL both have a CRect, a CButton and others: in a source that uses MFC, WTL's are named with WTL::.
#if defined(_AFX) && !defined(_WTL_NO_AUTOMATIC_NAMESPACE)
#define _WTL_NO_AUTOMATIC_NAMESPACE
#endif

#include <afxwin.h>
#include <atlbase.h>
#include <atlstr.h>

// WTL's classes have functions with an ATL::CString, which is MFC's then.
namespace ATL {
using ::CString;
}

#endif
