// Tip name: the line that names an object in a tool tip, from as many of its parts as are wanted.
//
//     atl_smart_tip_name_from_parts(name, 3, subName, 1.26, 2, dText, 0.5, true, true, true, true);
//     // "Left - Upper - 3 [ A=1.3 B=2.0 ] [ D 0.5000 mm ]"
//
// Threads. The texts of A and B values are kept, without a lock: call on one thread, the user interface's.
#ifndef KEXLIB_TEXT_TIP_NAME_H
#define KEXLIB_TEXT_TIP_NAME_H

#include <atlbase.h>
#include <atlstr.h>

#include <kexlib/export.h>

/// The line, in the ANSI code page of the calling thread. Its parts, in this order:
///
/// - showNames: `name`, and `subName` with " - " between them; an empty one is left away, and the " - " with it;
/// - showNumber: " - " and `number`, also where there is no name before it;
/// - a blank, always;
/// - showAB: "[ A=1.3 B=2.0 ]", with one decimal each;
/// - showD: " [ D 0.5000 mm ]", with four decimals; a null `dText`, which is for the unit, is "(null)".
///
/// The texts are only read; a text without a narrow form counts as empty. Decimals are as printf has them in the locale
/// that is set (exact digits, ties to even, "inf", "nan"); for A and B, what it was when the value first came counts,
/// since each value's text is kept for as long as the library is loaded. 0 and -0 are one value, NaN is a new one each
/// time. Running out of memory throws MFC's memory exception or std::bad_alloc.
KEXLIB_API CStringA atl_smart_tip_name_from_parts(ATL::CComBSTR& name, long number, ATL::CComBSTR& subName, double a,
                                                  double b, ATL::CComBSTR& dText, double d, bool showAB, bool showD,
                                                  bool showNames, bool showNumber);

#endif
