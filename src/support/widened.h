#ifndef KEXLIB_SUPPORT_WIDENED_H
#define KEXLIB_SUPPORT_WIDENED_H

#include <kexlib/framework.h>

namespace kexlib {

// The text, widened in the code page of the calling thread; null for null. Throws E_OUTOFMEMORY (AtlThrow) if there is
// no memory or the text has no wide form.
CComBSTR widened(const char* text);

}  // namespace kexlib

#endif
