// KEXLIB_API marks what kexlib.dll exports. The library itself is built with KEXLIB_EXPORTS; users define nothing.
#ifndef KEXLIB_EXPORT_H
#define KEXLIB_EXPORT_H

#if defined(UNICODE) || defined(_UNICODE)
#error The texts of kexlib are narrow: build without UNICODE and _UNICODE, with the multi-byte character set.
#endif
#ifndef _WIN64
#error kexlib is for 64-bit Windows: choose the platform x64.
#endif
#ifdef _MSVC_LANG
#define KEXLIB_LANGUAGE _MSVC_LANG
#else
#define KEXLIB_LANGUAGE __cplusplus
#endif
#if KEXLIB_LANGUAGE < 202002L
#error kexlib needs C++20: compile with /std:c++20 or -std=c++20.
#endif
#undef KEXLIB_LANGUAGE
#if __has_include(<kexlib/package.h>)  // in an installed package only: the compiler that it is for
#include <kexlib/package.h>
#endif

// "... needs to have dll-interface": of members and bases that nobody exports, such as those of the standard library.
// As MFC's headers do, this switches it off for the rest of the source.
#ifdef _MSC_VER
#pragma warning(disable : 4251 4275)
#endif

#ifdef KEXLIB_EXPORTS
#define KEXLIB_API __declspec(dllexport)
#else
#define KEXLIB_API __declspec(dllimport)
#endif

// The instantiation of a class template that the DLL exports. Its declaration in the header has the first, its
// definition in the source the second: GCC exports an instantiation as it is declared, Visual C++ as it is defined, and
// there the exporting declaration is an error.
#if defined(KEXLIB_EXPORTS) && defined(_MSC_VER)
#define KEXLIB_API_INSTANTIATION
#define KEXLIB_API_INSTANTIATED KEXLIB_API
#else
#define KEXLIB_API_INSTANTIATION KEXLIB_API
#define KEXLIB_API_INSTANTIATED
#endif

// A class that is only a base: its constructors do not set the virtual table (__declspec(novtable)). GCC has no such
// attribute and sets it. The difference is not observable, since the constructors call no virtual function.
#ifdef _MSC_VER
#define KEXLIB_NO_VTABLE __declspec(novtable)
#else
#define KEXLIB_NO_VTABLE
#endif

// Lets the compiler check the arguments of a printf-like member function: FORMAT and FIRST are parameter numbers,
// counted from 1, and the object itself counts as the first. GCC has an archetype for the formats of Windows programs,
// which knows %I64d and %Iu but not %zu and %td; clang's only one knows all of them.
#if defined(__clang__)
#define KEXLIB_PRINTF(FORMAT, FIRST) __attribute__((format(printf, FORMAT, FIRST)))
#elif defined(__GNUC__)
#define KEXLIB_PRINTF(FORMAT, FIRST) __attribute__((format(ms_printf, FORMAT, FIRST)))
#else
#define KEXLIB_PRINTF(FORMAT, FIRST)
#endif

#endif
