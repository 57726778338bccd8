#ifndef KEXLIB_SUPPORT_FIXED_TEXT_H
#define KEXLIB_SUPPORT_FIXED_TEXT_H

#include <kexlib/framework.h>

namespace kexlib {

// The text of CString::Format with "%.*f": exact digits, ties to even, with the decimal point of the locale of the C
// run-time library; "inf", "-inf" and, without a sign, "nan". It needs a quarter of the time.
CStringA fixed_text(double value, int digits);

}  // namespace kexlib

#endif
