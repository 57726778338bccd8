#ifndef KEXLIB_MODULE_WIDENED_H
#define KEXLIB_MODULE_WIDENED_H

#include <windows.h>

namespace kexlib::module {

// The text widened in the calling thread's code page, for the caller to free (SysFreeString); null for null. Where
// there is no memory, or the text has no wide form, E_OUTOFMEMORY is thrown (AtlThrow).
BSTR widened(const char* text);

}  // namespace kexlib::module

#endif
