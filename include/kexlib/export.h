// KEXLIB_API marks what kexlib.dll exports. The library itself is built with KEXLIB_EXPORTS; users define nothing.
#ifndef KEXLIB_EXPORT_H
#define KEXLIB_EXPORT_H

#ifdef KEXLIB_EXPORTS
#define KEXLIB_API __declspec(dllexport)
#else
#define KEXLIB_API __declspec(dllimport)
#endif

// The instantiation of a class template that the DLL exports. Its declaration in the header has the first, its definition
// in the source the second: GCC exports an instantiation as it is declared, Visual C++ as it is defined, and there the
// exporting declaration is an error.
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
// counted from 1, and the object itself counts as the first.
#ifdef __GNUC__
#define KEXLIB_PRINTF(FORMAT, FIRST) __attribute__((format(gnu_printf, FORMAT, FIRST)))
#else
#define KEXLIB_PRINTF(FORMAT, FIRST)
#endif

#endif
