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

// Owns pixels of 0xAARRGGBB, the top row first; colours are not multiplied with the alpha.
class KEXLIB_API hnDuctImage {
 public:
  // All pixels 0. A size below 1 x 1 gives an image without pixels, which cannot be encoded. Without alpha the top
  // bytes are 0xFF where it matters: whoever writes pixels sees to that. No memory throws std::bad_alloc.
  hnDuctImage(int width, int height, bool has_alpha);
  hnDuctImage(const hnDuctImage&) = delete;
  hnDuctImage& operator=(const hnDuctImage&) = delete;
  // Releases the pixels.
  virtual ~hnDuctImage();

  // In pixels.
  int width() const { return width_; }
  // In pixels.
  int height() const { return height_; }
  // Whether the top bytes mean anything.
  bool has_alpha() const { return has_alpha_; }

  // The pixels of a row from 0, the top one, to height() - 1.
  std::uint32_t* row(int y) { return pixels_.data() + offset(y); }
  // The same, to be read only.
  const std::uint32_t* row(int y) const { return pixels_.data() + offset(y); }

 private:
  std::size_t offset(int y) const { return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_); }

  int width_;
  int height_;
  bool has_alpha_;
  std::vector<std::uint32_t> pixels_;
};

// A copy of a DIB section of 32 bits as an opaque image; the section may be selected into a device context. Its bottom
// row is taken to come first, as is usual: a section does not tell. Owned by the caller; null for any other bitmap, and
// where there is no memory.
KEXLIB_API hnDuctImage* rq_duct_image_from_dib(HBITMAP bitmap);

#endif
