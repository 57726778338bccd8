// Imaging: pictures in memory, in controls and in files.
//
//   buffer.h          bytes that one thread writes and other threads wait for
//   dib.h             a picture of 32 bits a pixel with the effects of owner-drawn buttons
//   image_list.h      square pictures for the common controls, from resources
//   png_thread.h      an image encoded as PNG on a worker thread
//   screen_capture.h  the screen as a PNG file
//   static_bitmap.h   a static control that shows a bitmap, with the ownership of the bitmaps
#ifndef KEXLIB_IMAGING_H
#define KEXLIB_IMAGING_H

#include <kexlib/imaging/buffer.h>
#include <kexlib/imaging/dib.h>
#include <kexlib/imaging/image_list.h>
#include <kexlib/imaging/png_thread.h>
#include <kexlib/imaging/screen_capture.h>
#include <kexlib/imaging/static_bitmap.h>

#endif
