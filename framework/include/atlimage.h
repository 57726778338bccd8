// Images from files, as GDI bitmaps.
//
//     CImage image;
//     if (SUCCEEDED(image.Load("logo.png"))) control.SetBitmap(image.Detach());
#ifndef FRAMEWORK_ATLIMAGE_H
#define FRAMEWORK_ATLIMAGE_H

#include <atldef.h>

namespace ATL {

// Owns a bitmap, and loads it through GDI+.
//
// The first Load in the process starts GDI+, and the last CImage shuts it down; both may be in any module. Neither may
// happen in DllMain: a DLL with a global CImage calls ReleaseGDIPlus before it is unloaded. An object may be used on
// any thread, on one thread at a time.
class KEXFRAMEWORK_API CImage {
 public:
  CImage() noexcept;
  CImage(const CImage&) = delete;
  CImage& operator=(const CImage&) = delete;
  virtual ~CImage() noexcept;

  // The order of the rows of an attached bitmap. The bitmap itself does not contain it.
  enum DIBOrientation { DIBOR_DEFAULT, DIBOR_TOPDOWN, DIBOR_BOTTOMUP };

  // Returns the bitmap without giving up ownership; null if there is none.
  operator HBITMAP() const noexcept { return m_hBitmap; }

  // Takes ownership of a bitmap, DIB section or not, and deletes the previous one. No member of this subset depends on
  // the order of rows.
  void Attach(HBITMAP bitmap, DIBOrientation orientation = DIBOR_DEFAULT) noexcept;
  // Returns the bitmap; the caller deletes it (DeleteObject). Asserts that there is one.
  HBITMAP Detach() noexcept;
  // Deletes the bitmap.
  void Destroy() noexcept;
  bool IsNull() const noexcept { return !m_hBitmap; }

  // In pixels; 0 without a bitmap.
  int GetWidth() const noexcept;
  int GetHeight() const noexcept;
  // Bits per pixel.
  int GetBPP() const noexcept;

  // Loads an image file of any format that GDI+ reads into a DIB section; the file's extension does not matter. The
  // section has 32 bits per pixel, with straight alpha, if the file has alpha. A palette image keeps its depth and
  // palette. All others have 24 bits per pixel. On success the previous bitmap is deleted. The file is closed.
  //
  // Returns E_FAIL if the file does not exist or is no valid image, or if GDI+ does not start; E_OUTOFMEMORY;
  // E_INVALIDARG for a null name. The object then keeps its bitmap.
  HRESULT Load(LPCTSTR fileName) noexcept;

  // Shuts GDI+ down, as the last CImage would. A later Load starts it again.
  static void ReleaseGDIPlus() noexcept;

 private:
  HBITMAP m_hBitmap = nullptr;
};

}  // namespace ATL

#endif
