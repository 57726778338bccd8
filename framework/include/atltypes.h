// The geometry of MFC and ATL: SIZE, POINT and RECT with operations.
#ifndef FRAMEWORK_ATLTYPES_H
#define FRAMEWORK_ATLTYPES_H

#include <kexframework/geometry.h>

#include <atldef.h>

#endif
