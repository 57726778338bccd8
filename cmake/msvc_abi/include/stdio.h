#pragma once
#include <corecrt.h>
#include_next <stdio.h>

#ifdef __cplusplus
extern "C" {
int __cdecl __stdio_common_vfscanf(unsigned __int64, FILE*, const char*, _locale_t, va_list);
int __cdecl __stdio_common_vsscanf(unsigned __int64, const char*, size_t, const char*, _locale_t, va_list);
static inline int vfscanf(FILE* file, const char* format, va_list arguments) {
  return __stdio_common_vfscanf(0, file, format, nullptr, arguments);
}
static inline int vscanf(const char* format, va_list arguments) {
  return __stdio_common_vfscanf(0, stdin, format, nullptr, arguments);
}
static inline int vsscanf(const char* text, const char* format, va_list arguments) {
  return __stdio_common_vsscanf(0, text, (size_t)-1, format, nullptr, arguments);
}
}
#endif
