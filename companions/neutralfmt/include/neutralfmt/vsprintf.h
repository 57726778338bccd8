// NEUTRAL_FMT: formatting that does not ask for the locale.
#ifndef NEUTRALFMT_VSPRINTF_H
#define NEUTRALFMT_VSPRINTF_H

#include <cstdarg>
#include <cstddef>

namespace NEUTRAL_FMT {

// Formats as vsprintf does in the "C" locale: the decimal point is ".", whatever the process or the thread has set.
// Digits are those of the exact binary value, ties to even; infinities and NaN are "inf" and "nan".
//
// The text is cut at size - 1 characters and always ends in a zero. Returns the number of characters written, or -1 and
// an empty text for a format that is not valid. A size of 0 writes nothing and returns 0. %n, which would write through
// a pointer, is not valid. Any thread.
int vsprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments);

}  // namespace NEUTRAL_FMT

#endif
