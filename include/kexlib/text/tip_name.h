// Tip name: composes the line that names an object in a tool tip from its parts.
//
//     atl_smart_tip_name_from_parts(name, 3, subName, 1.26, 2, dText, 0.5, true, true, true, true);
//     // "Left - Upper - 3 [ A=1.3 B=2.0 ] [ D 0.5000 mm ]"
//
// Threads. The cache of A and B texts has no lock: call on one thread, the user-interface thread.
#ifndef KEXLIB_TEXT_TIP_NAME_H
#define KEXLIB_TEXT_TIP_NAME_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

/// The line, in the ANSI code page of the calling thread. Its parts, in this order:
///
/// - showNames: `name`, and `subName` with " - " between them; an empty one is omitted, with its " - ";
/// - showNumber: " - " and `number`, also without a name before it;
/// - a blank, always;
/// - showAB: "[ A=1.3 B=2.0 ]", with one decimal each;
/// - showD: " [ D 0.5000 mm ]", with four decimals; `dText` is the unit; a null one is printed as "(null)".
///
/// The texts are only read; a text without a narrow form counts as empty. Decimals are formatted as printf does in the
/// current locale (exact digits, ties to even, "inf", "nan"). The texts of A and B are cached, one for each value,
/// until the library is unloaded: they keep the locale of the first use. 0 and -0 are one value; each NaN adds an
/// entry. Running out of memory throws MFC's memory exception or std::bad_alloc.
KEXLIB_API CStringA atl_smart_tip_name_from_parts(ATL::CComBSTR& name, long number, ATL::CComBSTR& subName, double a,
                                                  double b, ATL::CComBSTR& dText, double d, bool showAB, bool showD,
                                                  bool showNames, bool showNumber);

#endif
