// Imaging: pictures in memory, on controls, and as files.
//
//   buffer.h          bytes that one thread fills and others wait for
//   dib.h             a picture of 32 bits a pixel with the effects of owner-drawn buttons
//   image_list.h      square pictures of the common controls, from resources
//   png_thread.h      an image encoded as PNG on a thread of its own
//   screen_capture.h  the screen as a PNG file
//   static_bitmap.h   a static control that shows a bitmap, and who deletes which
#ifndef KEXLIB_IMAGING_H
#define KEXLIB_IMAGING_H

#include <kexlib/imaging/buffer.h>
#include <kexlib/imaging/dib.h>
#include <kexlib/imaging/image_list.h>
#include <kexlib/imaging/png_thread.h>
#include <kexlib/imaging/screen_capture.h>
#include <kexlib/imaging/static_bitmap.h>

#endif
