// WTL's geometry: since version 10 that of ATL (atltypes.h), at global scope; before, classes of its own in WTL.
#ifndef FRAMEWORK_ATLMISC_H
#define FRAMEWORK_ATLMISC_H

#ifndef FRAMEWORK_ATLAPP_H
#error "atlmisc.h requires atlapp.h to be included first"
#endif

#if _WTL_VER >= 0x1000
#include <atltypes.h>
#else
namespace WTL {
#include <kexframework/geometry.h>
}

#ifndef _WTL_NO_AUTOMATIC_NAMESPACE
using namespace WTL;
#endif
#endif

#endif
