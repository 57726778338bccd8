// CStringA and CStringW, the strings of MFC applications, and CString, the narrow one.
#ifndef FRAMEWORK_ATLSTR_H
#define FRAMEWORK_ATLSTR_H

#include <cstringt.h>

// The module that holds a string resource: the application's, or one of the modules that it looks through. Null where
// none does.
KEXFRAMEWORK_API HINSTANCE AfxFindStringResourceHandle(UINT id);

// Text as the run-time library reads it, with string resources looked up through the application.
template <typename CharType, class StringIterator = ATL::ChTraitsCRT<CharType>>
class StrTraitMFC_DLL : public StringIterator {
 public:
  static HINSTANCE FindStringResourceInstance(UINT id) { return AfxFindStringResourceHandle(id); }
};

using CStringA = ATL::CStringT<char, StrTraitMFC_DLL<char>>;
using CStringW = ATL::CStringT<wchar_t, StrTraitMFC_DLL<wchar_t>>;
using CString = CStringA;

#endif
