// The strings of programs without MFC: CStringA and CStringW, and CString, the narrow one. In a source with MFC these
// names are MFC's strings (afxstr.h), which are other types.
#ifndef FRAMEWORK_ATLSTR_H
#define FRAMEWORK_ATLSTR_H

#include <atlbase.h>
#include <cstringt.h>

namespace ATL {

// Character functions of the run-time library; string resources are those of the module.
template <typename CharType, class StringIterator = ChTraitsCRT<CharType>>
class StrTraitATL : public StringIterator {
 public:
  static HINSTANCE FindStringResourceInstance(UINT id) {
    const HINSTANCE resources = _AtlBaseModule.GetResourceInstance();
    return FindResourceA(resources, MAKEINTRESOURCEA(id / 16 + 1), reinterpret_cast<LPCSTR>(RT_STRING)) ? resources
                                                                                                        : nullptr;
  }
};

#ifndef _AFX
using CStringA = CStringT<char, StrTraitATL<char>>;
using CStringW = CStringT<wchar_t, StrTraitATL<wchar_t>>;
using CString = CStringA;
#endif

}  // namespace ATL

#endif
