// COM helpers: the values and the plumbing around COM objects.
//
//   guid.h                 a GUID that makes itself when it is first read, its texts, and an ordering
//   variant_safe_array.h   a list of VARIANTs as automation passes it
#ifndef KEXLIB_COM_H
#define KEXLIB_COM_H

#include <kexlib/com/guid.h>
#include <kexlib/com/variant_safe_array.h>

#endif
