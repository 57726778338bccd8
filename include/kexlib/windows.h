// windows.h, for headers that need no MFC. A source that has included neither windows.h nor MFC gets both, MFC first,
// so that headers of kexlib may be included in any order.
#ifndef KEXLIB_WINDOWS_H
#define KEXLIB_WINDOWS_H

#if defined(_AFX) || !defined(_WINDOWS_)
#include <kexlib/framework.h>
#endif

#endif
