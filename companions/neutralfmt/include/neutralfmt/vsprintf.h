// NEUTRAL_FMT: formatting that does not depend on the locale.
#ifndef NEUTRALFMT_VSPRINTF_H
#define NEUTRALFMT_VSPRINTF_H

#include <cstdarg>
#include <cstddef>

namespace NEUTRAL_FMT {

// Formats numbers as vsprintf does in the "C" locale: the decimal point is ".", whatever locale is set. The exact
// binary value is rounded, ties to even. Infinities and NaN are "inf" and "nan". Wide text ("%ls") depends on the
// locale: the run-time library converts its characters according to LC_CTYPE, and a character without a narrow form
// makes the format invalid.
//
// The text is truncated to size - 1 characters and is always terminated. Returns the number of characters written, or
// -1 and an empty text if the format is invalid. A size of 0 writes nothing and returns 0. %n is invalid, since it
// writes through a pointer. Any thread.
int vsprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments);

}  // namespace NEUTRAL_FMT

#endif
