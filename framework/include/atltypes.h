// The geometry of MFC and ATL: SIZE, POINT and RECT with operations.
#ifndef FRAMEWORK_ATLTYPES_H
#define FRAMEWORK_ATLTYPES_H

// In this order: the text of the classes needs the types of Windows.
// clang-format off
#include <atldef.h>
#include <kexframework/geometry.h>
// clang-format on

#endif
