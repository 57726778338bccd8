#pragma once
#include_next <stdlib.h>

#ifdef __cplusplus
extern "C" {
int __cdecl at_quick_exit(void(__cdecl*)(void));
__declspec(noreturn) void __cdecl quick_exit(int);
unsigned int __cdecl _set_abort_behavior(unsigned int, unsigned int);
double __cdecl _strtod_l(const char*, char**, _locale_t);
float __cdecl _strtof_l(const char*, char**, _locale_t);
const unsigned short* __cdecl __pctype_func(void);
int __cdecl ___mb_cur_max_func(void);
int __cdecl ___mb_cur_max_l_func(_locale_t);
int* __cdecl __sys_nerr(void);
char** __cdecl __sys_errlist(void);
}
#ifndef MB_CUR_MAX
#define MB_CUR_MAX ((size_t)___mb_cur_max_func())
#endif
#ifndef _sys_nerr
#define _sys_nerr (*__sys_nerr())
#define _sys_errlist (__sys_errlist())
#endif
#endif
