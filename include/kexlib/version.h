// The version of kexlib, defined here only: the build, the version resource of the DLL and the package read it.
//
// Plain macros, so that the resource compiler can include this header.
#ifndef KEXLIB_VERSION_H
#define KEXLIB_VERSION_H

#define KEXLIB_VERSION_MAJOR 0
#define KEXLIB_VERSION_MINOR 1
#define KEXLIB_VERSION_PATCH 0

#endif
