// rqPNGWriterDuctImage: images as PNG, to a file or piece by piece to a function.
#ifndef RQGFX_PNG_WRITER_H
#define RQGFX_PNG_WRITER_H

#include <kexlib/export.h>

#include <bzbase/string.h>
#include <rqgfx/duct_image.h>

// Encodes with WIC, the system's imaging component, in bands of rows: the first bytes come long before the last row is
// read. COM need not be initialised on the thread.
//
// The options, with -1 for the default of each:
//   filter   0: rows are not filtered; 1, the default: not where neighbours are mostly equal, as in pictures of
//            interfaces, and else as WIC has it; any other value: as WIC has it
//   bits     the most bits that a pixel takes. 24: without alpha; 32, the default, and any other value: with the alpha
//   of
//            an image that has it. An image without it takes 24 in any case: a smaller file of the same pixels
//
// Results are 1, or 0 where the image, the system or the taker refuses; nothing is thrown.
class KEXLIB_API rqPNGWriterDuctImage {
 public:
  // Takes a piece of the file; false ends the encoding.
  using Sink = bool (*)(void* context, const unsigned char* data, unsigned __int64 count);

  // To the sink, which gets `context` with each piece.
  static int write_file(hnDuctImage* image, Sink sink, void* context, int filter, int bits);

  // To a file in the ANSI code page, instead of what was in it.
  static int write_file(hnDuctImage* image, const bzString& path, int filter, int bits);
};

#endif
