// pvWindowDIB: an off-screen bitmap that is drawn into like a window.
#ifndef PVWND_WINDOW_DIB_H
#define PVWND_WINDOW_DIB_H

#include <kexlib/export.h>

#include <windows.h>

// Bits of a pixel.
enum pvDIB_DEPTH : int {
  pvDIB_default = 0  // 32
};

// How the making of a bitmap went.
enum pvDIBStatus : int { pvDIB_made = 0, pvDIB_failed = 1 };

// What a window may be given beside; a bitmap takes none of it.
struct pvWinArgs {};

// What can be drawn into.
class KEXLIB_API pvWindowW {
 public:
  pvWindowW(const pvWindowW&) = delete;
  pvWindowW& operator=(const pvWindowW&) = delete;
  // Releases what was drawn into.
  virtual ~pvWindowW();

  // The device context to draw with, which stays the object's; null where there is none.
  HDC hdc() const { return dc_; }

 protected:
  // In memory.
  pvWindowW();

 private:
  HDC dc_;
};

// A bitmap of 32 bits.
class KEXLIB_API pvWindowDIB : public pvWindowW {
 public:
  // All pixels black; any depth is 32 bits. Where there is no memory or no such size the status says so, and there is
  // no bitmap.
  pvWindowDIB(int width, int height, pvDIB_DEPTH depth, pvDIBStatus& status, pvWinArgs* args);
  // Deletes the bitmap.
  ~pvWindowDIB() override;

  // The bitmap, a DIB section, which stays the object's; null where there is none.
  HBITMAP bitmap() const { return bitmap_; }

 private:
  HBITMAP bitmap_;
  HGDIOBJ original_ = nullptr;
};

#endif
