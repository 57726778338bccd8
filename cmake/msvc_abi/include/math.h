// long double is double in this ABI, and the C library has no functions for it. The classifying macros of C are
// functions in C++.
#pragma once
#include <corecrt.h>
#include_next <math.h>
#include <stdlib.h>

#ifndef HUGE_VALL
#define HUGE_VALL ((long double)HUGE_VAL)
#endif

#ifdef __cplusplus
extern "C" {

typedef float float_t;
typedef double double_t;

double __cdecl erfc(double);
float __cdecl erfcf(float);
float __cdecl fmaf(float, float, float);
double __cdecl nexttoward(double, long double);
float __cdecl nexttowardf(float, long double);
double __cdecl nan(const char*);
float __cdecl nanf(const char*);

#define MSVC_ABI_ONE(result, name) \
  result __cdecl name(double);     \
  static inline result name##l(long double x) { return name((double)x); }
#define MSVC_ABI_TWO(name)             \
  double __cdecl name(double, double); \
  static inline long double name##l(long double x, long double y) { return name((double)x, (double)y); }

MSVC_ABI_ONE(double, acos)
MSVC_ABI_ONE(double, acosh)
MSVC_ABI_ONE(double, asin)
MSVC_ABI_ONE(double, asinh)
MSVC_ABI_ONE(double, atan)
MSVC_ABI_ONE(double, atanh)
MSVC_ABI_ONE(double, cbrt)
MSVC_ABI_ONE(double, ceil)
MSVC_ABI_ONE(double, cos)
MSVC_ABI_ONE(double, cosh)
MSVC_ABI_ONE(double, erf)
MSVC_ABI_ONE(double, erfc)
MSVC_ABI_ONE(double, exp)
MSVC_ABI_ONE(double, exp2)
MSVC_ABI_ONE(double, expm1)
MSVC_ABI_ONE(double, fabs)
MSVC_ABI_ONE(double, floor)
MSVC_ABI_ONE(double, lgamma)
MSVC_ABI_ONE(double, log)
MSVC_ABI_ONE(double, log10)
MSVC_ABI_ONE(double, log1p)
MSVC_ABI_ONE(double, log2)
MSVC_ABI_ONE(double, logb)
MSVC_ABI_ONE(double, nearbyint)
MSVC_ABI_ONE(double, rint)
MSVC_ABI_ONE(double, round)
MSVC_ABI_ONE(double, sin)
MSVC_ABI_ONE(double, sinh)
MSVC_ABI_ONE(double, sqrt)
MSVC_ABI_ONE(double, tan)
MSVC_ABI_ONE(double, tanh)
MSVC_ABI_ONE(double, tgamma)
MSVC_ABI_ONE(double, trunc)
MSVC_ABI_ONE(int, ilogb)
MSVC_ABI_ONE(long, lrint)
MSVC_ABI_ONE(long, lround)
MSVC_ABI_ONE(long long, llrint)
MSVC_ABI_ONE(long long, llround)
MSVC_ABI_TWO(atan2)
MSVC_ABI_TWO(copysign)
MSVC_ABI_TWO(fdim)
MSVC_ABI_TWO(fmax)
MSVC_ABI_TWO(fmin)
MSVC_ABI_TWO(fmod)
MSVC_ABI_TWO(hypot)
MSVC_ABI_TWO(nextafter)
MSVC_ABI_TWO(pow)
MSVC_ABI_TWO(remainder)
#undef MSVC_ABI_ONE
#undef MSVC_ABI_TWO

double __cdecl fma(double, double, double);
double __cdecl frexp(double, int*);
double __cdecl ldexp(double, int);
double __cdecl modf(double, double*);
double __cdecl remquo(double, double, int*);
double __cdecl scalbln(double, long);
double __cdecl scalbn(double, int);
static inline long double fmal(long double x, long double y, long double z) {
  return fma((double)x, (double)y, (double)z);
}
static inline long double frexpl(long double x, int* exponent) { return frexp((double)x, exponent); }
static inline long double ldexpl(long double x, int exponent) { return ldexp((double)x, exponent); }
static inline long double modfl(long double x, long double* whole) { return modf((double)x, (double*)whole); }
static inline long double nanl(const char* text) { return nan(text); }
static inline long double nexttowardl(long double x, long double y) { return nextafter((double)x, (double)y); }
static inline long double remquol(long double x, long double y, int* quotient) {
  return remquo((double)x, (double)y, quotient);
}
static inline long double scalblnl(long double x, long exponent) { return scalbln((double)x, exponent); }
static inline long double scalbnl(long double x, int exponent) { return scalbn((double)x, exponent); }
}

#undef fpclassify
#undef isfinite
#undef isgreater
#undef isgreaterequal
#undef isinf
#undef isless
#undef islessequal
#undef islessgreater
#undef isnan
#undef isnormal
#undef isunordered
#undef signbit
// libc++ has fpclassify and signbit itself for this ABI.
template <class T>
inline bool isfinite(T x) noexcept {
  return __builtin_isfinite((double)x);
}
template <class T>
inline bool isinf(T x) noexcept {
  return __builtin_isinf((double)x);
}
template <class T>
inline bool isnan(T x) noexcept {
  return __builtin_isnan((double)x);
}
template <class T>
inline bool isnormal(T x) noexcept {
  return __builtin_isnormal((double)x);
}
template <class T, class U>
inline bool isgreater(T x, U y) noexcept {
  return __builtin_isgreater((double)x, (double)y);
}
template <class T, class U>
inline bool isgreaterequal(T x, U y) noexcept {
  return __builtin_isgreaterequal((double)x, (double)y);
}
template <class T, class U>
inline bool isless(T x, U y) noexcept {
  return __builtin_isless((double)x, (double)y);
}
template <class T, class U>
inline bool islessequal(T x, U y) noexcept {
  return __builtin_islessequal((double)x, (double)y);
}
template <class T, class U>
inline bool islessgreater(T x, U y) noexcept {
  return __builtin_islessgreater((double)x, (double)y);
}
template <class T, class U>
inline bool isunordered(T x, U y) noexcept {
  return __builtin_isunordered((double)x, (double)y);
}

inline long abs(long x) noexcept { return x < 0 ? -x : x; }
inline long long abs(long long x) noexcept { return x < 0 ? -x : x; }
#endif
