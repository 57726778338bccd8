// Imaging: pictures in memory, on controls, and as files.
//
//   buffer.h          bytes that one thread fills and others wait for
//   dib.h             a picture of 32 bits a pixel with the effects of owner-drawn buttons
#ifndef KEXLIB_IMAGING_H
#define KEXLIB_IMAGING_H

#include <kexlib/imaging/buffer.h>
#include <kexlib/imaging/dib.h>

#endif
