// rqPNGWriterDuctImage: writes an image as PNG, to a file or piece by piece to a function.
#ifndef RQGFX_PNG_WRITER_H
#define RQGFX_PNG_WRITER_H

#include <kexlib/export.h>

#include <bzbase/string.h>
#include <rqgfx/duct_image.h>

// Encodes with WIC, the system's imaging component, in bands of 32 rows: memory grows with the width of the image, not
// with its height, and the first bytes are written long before the last row is encoded. COM need not be initialised on
// the thread. Rows that change meanwhile may be written as they were or as they are, with a palette in wrong colours.
//
// The options; -1 selects the default:
//   filter   0: no row filters. 1 (default): no row filters if most neighbouring pixels are equal, as in pictures of
//            user interfaces, else WIC's default. Any other value: WIC's default
//   bits     24: no alpha channel. 32 (default) and any other value: an alpha channel if the image has one
//
// A picture that is written without alpha has 24 bits a pixel. If it has at most 256 colours, as pictures of user
// interfaces do, it has 8 and a palette instead, and no row filters, whatever `filter` is: the same pixels in a smaller
// file. The search for the colours ends at the 257th; before the first byte is written it may have read all rows.
//
// The result is 1 on success. It is 0 if the image is null or empty, if memory runs out, or if the system, the sink or
// the file fails. No exception is thrown.
class KEXLIB_API rqPNGWriterDuctImage {
 public:
  // Receives a piece of the file. False ends the encoding, and so does an exception, which is not passed on.
  using Sink = bool (*)(void* context, const unsigned char* data, unsigned __int64 count);

  // Writes to the sink, which receives `context` with each piece.
  static int write_file(hnDuctImage* image, Sink sink, void* context, int filter, int bits);

  // Writes to a file; the path is in the ANSI code page. An existing file is replaced. It is left unchanged if the
  // image is null or empty; after a later failure the file is incomplete.
  static int write_file(hnDuctImage* image, const bzString& path, int filter, int bits);
};

#endif
