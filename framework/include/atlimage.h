// Images from files, as bitmaps of GDI.
//
//     CImage image;
//     if (SUCCEEDED(image.Load("logo.png"))) control.SetBitmap(image.Detach());
#ifndef FRAMEWORK_ATLIMAGE_H
#define FRAMEWORK_ATLIMAGE_H

#include <atldef.h>

namespace ATL {

// A bitmap that deletes itself, and what loads it: GDI+.
//
// GDI+ is started by the first Load in the process and shut down with the last CImage in it, whichever module each is
// in. Starting and shutting it down must not happen in DllMain: a DLL that keeps a CImage in a global object calls
// ReleaseGDIPlus before it is unloaded. Objects may be used on any thread, one thread at a time each.
class KEXFRAMEWORK_API CImage {
 public:
  CImage() noexcept;
  CImage(const CImage&) = delete;
  CImage& operator=(const CImage&) = delete;
  virtual ~CImage() noexcept;

  // Which way up the rows of an attached bitmap are. A bitmap itself does not tell.
  enum DIBOrientation { DIBOR_DEFAULT, DIBOR_TOPDOWN, DIBOR_BOTTOMUP };

  // The bitmap, which stays the object's; null where there is none.
  operator HBITMAP() const noexcept { return m_hBitmap; }

  // Takes over a bitmap, a DIB section or not; the one that was held is deleted. What the rows' order is does not
  // matter to any member here.
  void Attach(HBITMAP bitmap, DIBOrientation orientation = DIBOR_DEFAULT) noexcept;
  // Hands the bitmap out: the caller deletes it (DeleteObject).
  HBITMAP Detach() noexcept;
  // Deletes the bitmap.
  void Destroy() noexcept;
  bool IsNull() const noexcept { return !m_hBitmap; }

  // In pixels. There has to be a bitmap; without one they are 0.
  int GetWidth() const noexcept;
  int GetHeight() const noexcept;
  // Bits of a pixel.
  int GetBPP() const noexcept;

  // Loads an image file of any format that GDI+ reads, whatever the file is called, into a DIB section: 32 bits a pixel
  // with the file's alpha, not multiplied into the colours, where it has alpha; its own depth and palette where it is
  // palettized; 24 bits otherwise. The bitmap that was held is deleted once the new one is there; the file is closed.
  //
  // E_FAIL where there is no such file, it is no image or a damaged one, or GDI+ does not start; E_OUTOFMEMORY;
  // E_INVALIDARG for a null name. The object then keeps what it held.
  HRESULT Load(LPCTSTR fileName) noexcept;

  // Shuts GDI+ down now, as the last CImage would; a later Load starts it again.
  static void ReleaseGDIPlus() noexcept;

 private:
  HBITMAP m_hBitmap = nullptr;
};

}  // namespace ATL

#endif
