// What the parts of this run-time library share. It is written from the documented interface of the C run-time library
// of Windows ("CRT initialization", "TLS callbacks") and from what the compiler and the linker ask for by name.
#ifndef MSVC_ABI_RUNTIME_H
#define MSVC_ABI_RUNTIME_H

extern "C" {

using Procedure = void(__cdecl*)();

// Runs the constructors of the module's objects. Returns false if one of them says that the module cannot be used.
bool construct_objects();

// Runs what atexit and the destructors have registered in this module, the last first.
void destroy_objects();
}

// Every module has these libraries, whatever it calls itself.
#pragma comment(lib, "vcruntime")
#pragma comment(lib, "ucrt")
#pragma comment(lib, "exception_pointers")
#pragma comment(lib, "kernel32")

#endif
