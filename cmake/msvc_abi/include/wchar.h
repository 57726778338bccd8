#pragma once
#include <stdio.h>
#include <wine_wchar.h>

#ifdef __cplusplus
extern "C" {
errno_t __cdecl wcrtomb_s(size_t*, char*, size_t, wchar_t, mbstate_t*);
double __cdecl wcstod(const wchar_t*, wchar_t**);
static inline long double wcstold(const wchar_t* text, wchar_t** end) { return wcstod(text, end); }
static inline int fwide(FILE*, int mode) { return mode; }
static inline int mbsinit(const mbstate_t* state) { return !state || state->_Wchar == 0; }
static inline int vfwscanf(FILE* file, const wchar_t* format, va_list arguments) {
  return __stdio_common_vfwscanf(0, file, format, nullptr, arguments);
}
static inline int vwscanf(const wchar_t* format, va_list arguments) {
  return __stdio_common_vfwscanf(0, stdin, format, nullptr, arguments);
}
static inline int vswscanf(const wchar_t* text, const wchar_t* format, va_list arguments) {
  return __stdio_common_vswscanf(0, text, (size_t)-1, format, nullptr, arguments);
}
}
#endif
