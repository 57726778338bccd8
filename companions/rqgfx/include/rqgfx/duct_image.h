// hnDuctImage: an image in memory.
//
//     auto image = std::make_unique<hnDuctImage>(640, 480, false);
//     image->row(0)[0] = 0xFFFF0000;                                     // the upper left pixel: opaque red
#ifndef RQGFX_DUCT_IMAGE_H
#define RQGFX_DUCT_IMAGE_H

#include <kexlib/export.h>

#include <windows.h>

#include <cstdint>
#include <vector>

// Owns pixels of the form 0xAARRGGBB, the top row first. Colours are not premultiplied.
class KEXLIB_API hnDuctImage {
 public:
  // All pixels are 0. A size below 1 x 1 makes an image without pixels, which cannot be encoded. Without alpha, the top
  // byte of each pixel should be 0xFF; the class does not set it. Throws std::bad_alloc if there is no memory.
  hnDuctImage(int width, int height, bool has_alpha);
  hnDuctImage(const hnDuctImage&) = delete;
  hnDuctImage& operator=(const hnDuctImage&) = delete;
  // Releases the pixels.
  virtual ~hnDuctImage();

  // The width in pixels.
  int width() const { return width_; }
  // The height in pixels.
  int height() const { return height_; }
  // Whether the top bytes are an alpha channel.
  bool has_alpha() const { return has_alpha_; }

  // The pixels of row y, from 0 (the top row) to height() - 1.
  std::uint32_t* row(int y) { return pixels_.data() + offset(y); }
  // The same, read-only.
  const std::uint32_t* row(int y) const { return pixels_.data() + offset(y); }

 private:
  std::size_t offset(int y) const { return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_); }

  int width_;
  int height_;
  bool has_alpha_;
  std::vector<std::uint32_t> pixels_;
};

// Copies a DIB section of 32 bits to a new opaque image, which the caller owns. The section may be selected into a
// device context. It must be bottom-up: GetObject does not report the direction. Null for any other bitmap, or if there
// is no memory.
KEXLIB_API hnDuctImage* rq_duct_image_from_dib(HBITMAP bitmap);

#endif
