// COM helpers: the values and the plumbing around COM objects.
//
//   activex.h              a control in the place of a dialog's placeholder, and fatal exceptions in servers
//   digit_control.h        an ActiveX control that shows numbers, and its font
//   guid.h                 a GUID that is generated when it is first read, its texts, and an ordering
//   registration_free.h    unregistered classes: created through a manifest, found by their type libraries
//   variant_safe_array.h   a list of VARIANTs as automation passes it
#ifndef KEXLIB_COM_H
#define KEXLIB_COM_H

#include <kexlib/com/activex.h>
#include <kexlib/com/digit_control.h>
#include <kexlib/com/guid.h>
#include <kexlib/com/registration_free.h>
#include <kexlib/com/variant_safe_array.h>

#endif
