// The strings of MFC applications: CStringA and CStringW, and CString, the narrow one.
#ifndef FRAMEWORK_AFXSTR_H
#define FRAMEWORK_AFXSTR_H

#include <cstringt.h>

// Returns the module that contains a string resource: the module whose state is current, or a library
// (CDynLinkLibrary). Null if none does.
KEXFRAMEWORK_API HINSTANCE AfxFindStringResourceHandle(UINT id);

// Character functions of the run-time library; string resources are found through the application.
template <typename CharType, class StringIterator = ATL::ChTraitsCRT<CharType>>
class StrTraitMFC_DLL : public StringIterator {
 public:
  static HINSTANCE FindStringResourceInstance(UINT id) { return AfxFindStringResourceHandle(id); }
};

using CStringA = ATL::CStringT<char, StrTraitMFC_DLL<char>>;
using CStringW = ATL::CStringT<wchar_t, StrTraitMFC_DLL<wchar_t>>;
using CString = CStringA;

#endif
