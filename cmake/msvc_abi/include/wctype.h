#pragma once
#include_next <wctype.h>

#ifdef __cplusplus
extern "C" {
int __cdecl _iswcntrl_l(wint_t, _locale_t);
int __cdecl _iswxdigit_l(wint_t, _locale_t);
}
#endif
