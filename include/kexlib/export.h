// KEXLIB_API marks what kexlib.dll exports. The library itself is built with KEXLIB_EXPORTS; users define nothing.
#ifndef KEXLIB_EXPORT_H
#define KEXLIB_EXPORT_H

#ifdef KEXLIB_EXPORTS
#define KEXLIB_API __declspec(dllexport)
#else
#define KEXLIB_API __declspec(dllimport)
#endif

// Lets the compiler check the arguments of a printf-like member function: FORMAT and FIRST are parameter numbers,
// counted from 1, where the object itself is the first.
#ifdef __GNUC__
#define KEXLIB_PRINTF(FORMAT, FIRST) __attribute__((format(gnu_printf, FORMAT, FIRST)))
#else
#define KEXLIB_PRINTF(FORMAT, FIRST)
#endif

#endif
