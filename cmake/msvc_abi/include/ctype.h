#pragma once
#include_next <ctype.h>

#ifdef __cplusplus
extern "C" {
int __cdecl _isdigit_l(int, _locale_t);
int __cdecl _islower_l(int, _locale_t);
int __cdecl _isupper_l(int, _locale_t);
int __cdecl _isxdigit_l(int, _locale_t);
}
#endif
