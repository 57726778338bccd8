#pragma once
#include <corecrt.h>
#include_next <time.h>

#ifdef __cplusplus
struct timespec {
  time_t tv_sec;
  long tv_nsec;
};
extern "C" {
size_t __cdecl _strftime_l(char*, size_t, const char*, const struct tm*, _locale_t);
int __cdecl _timespec64_get(struct timespec*, int);
}
#define TIME_UTC 1
inline errno_t localtime_s(struct tm* result, const time_t* time) { return _localtime64_s(result, time); }
inline int timespec_get(struct timespec* time, int base) { return _timespec64_get(time, base); }
#endif
