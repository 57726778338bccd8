// pvWindowDIB: an off-screen bitmap with a device context to draw on it.
#ifndef PVWND_WINDOW_DIB_H
#define PVWND_WINDOW_DIB_H

#include <kexlib/export.h>

#include <windows.h>

// The bits of a pixel.
enum pvDIB_DEPTH : int {
  pvDIB_default = 0  // 32
};

// The result of creating a bitmap.
enum pvDIBStatus : int { pvDIB_made = 0, pvDIB_failed = 1 };

// Further arguments of a window. A bitmap uses none.
struct pvWinArgs {};

// Owns a memory device context.
class KEXLIB_API pvWindowW {
 public:
  pvWindowW(const pvWindowW&) = delete;
  pvWindowW& operator=(const pvWindowW&) = delete;
  // Deletes the device context.
  virtual ~pvWindowW();

  // The device context, owned by the object; null if it could not be created.
  HDC hdc() const { return dc_; }

 protected:
  // Creates the device context.
  pvWindowW();

 private:
  HDC dc_;
};

// A bitmap of 32 bits a pixel, selected into the device context.
class KEXLIB_API pvWindowDIB : public pvWindowW {
 public:
  // Creates a black bitmap.
  //   width, height  in pixels, at least 1
  //   depth          ignored: the depth is 32 bits
  //   status         receives pvDIB_made, or pvDIB_failed if there is no bitmap
  //   args           ignored, may be null
  pvWindowDIB(int width, int height, pvDIB_DEPTH depth, pvDIBStatus& status, pvWinArgs* args);
  // Deletes the bitmap.
  ~pvWindowDIB() override;

  // The bitmap, a DIB section owned by the object; null if it could not be created.
  HBITMAP bitmap() const { return bitmap_; }

 private:
  HBITMAP bitmap_;
  HGDIOBJ original_ = nullptr;
};

#endif
