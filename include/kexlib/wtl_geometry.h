// WTL's geometry under one name for all versions: WTL::CSize, WTL::CPoint and WTL::CRect. Since version 10 of WTL they
// are ATL's classes at global scope.
#ifndef KEXLIB_WTL_GEOMETRY_H
#define KEXLIB_WTL_GEOMETRY_H

#include <kexlib/windows.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlmisc.h>

#if _WTL_VER >= 0x1000
namespace WTL {
using ::CPoint;
using ::CRect;
using ::CSize;
}  // namespace WTL
#endif

#endif
